// The preview: a sphere lit with the viewer material's answers, drawn with the shading model of
// `rshview preview` (docs/rshview.md, "preview"): orthographic sphere of radius 0.45 N on grey
// 128, light (-0.5, 0.6, 0.8), ambient 0.15, Lambert diffuse, the luminosity's share of the base
// colour at full strength, Blinn-Phong specular with exponent 2 + 126 glossiness, nearest texel
// with position/size/angle/flip/wrapping, mixed with the background at 0.5 transparency. WebGL
// draws it; without WebGL the same model runs on the CPU.

const BACKGROUND = 128 / 255;

/** A number clamped to 0..1; anything that is not a finite number is 0. */
const unit = (value) => (Number.isFinite(value) ? Math.min(Math.max(value, 0), 1) : 0);

/** The sphere's inputs from a GET /api/nodes/{id}/material answer. */
export function sphereMaterial(answer) {
  const l = answer?.lighting || {};
  const t = answer?.texture || null;
  const three = (c, d) => (Array.isArray(c) && c.length >= 3 ? c.slice(0, 3).map(Number) : d);
  return {
    diffuse: Number(l.diffuse?.coefficient ?? 0),
    diffuseColor: three(l.diffuse?.color, [0, 0, 0]),
    specular: Number(l.specular?.coefficient ?? 0),
    specularColor: three(l.specular?.color, [0, 0, 0]),
    glossiness: Number(l.specular?.glossiness ?? 0),
    transparency: Number(l.transparencyCoef ?? 0),
    // A luminosity the material does not answer (null value, failed result) counts as 0.
    luminosity: unit(Number(l.luminosity?.value ?? 0)),
    textured: Boolean(t && t.image && t.image.width > 0 && t.image.height > 0),
    repeat: [t?.wrapping?.[0] !== 0, t?.wrapping?.[1] !== 0],
    flip: [Boolean(t?.flip?.[0]), Boolean(t?.flip?.[1])],
    position: [Number(t?.position?.[0] ?? 0), Number(t?.position?.[1] ?? 0)],
    size: [Number(t?.size?.[0] ?? 1), Number(t?.size?.[1] ?? 1)],
    angle: Number(t?.angle ?? 0),
  };
}

const VERTEX = `
attribute vec2 corner;
void main() { gl_Position = vec4(corner, 0.0, 1.0); }`;

const FRAGMENT = `
precision highp float;
uniform float side;
uniform vec3 diffuseColor, specularColor;
uniform float diffuse, specular, glossiness, transparency, luminosity;
uniform bool textured;
uniform sampler2D image;
uniform vec2 imageSize, position, size;
uniform bvec2 repeat, flip;
uniform float angle;
const float PI = 3.14159265358979;

float wrap(float t, bool r) { return r ? t - floor(t) : clamp(t, 0.0, 0.99999994); }

void main() {
  float radius = 0.45 * side;
  float centre = 0.5 * side;
  // gl_FragCoord is a pixel centre, y up: the same x, y as the picture's rows from the top.
  float x = (gl_FragCoord.x - centre) / radius;
  float y = (gl_FragCoord.y - centre) / radius;
  float rr = x * x + y * y;
  vec3 bg = vec3(${BACKGROUND.toFixed(8)});
  if (rr > 1.0) { gl_FragColor = vec4(bg, 1.0); return; }
  float z = sqrt(1.0 - rr);
  vec3 base = diffuseColor;
  if (textured) {
    float u = 0.5 + atan(x, z) / (2.0 * PI);
    float v = 0.5 - asin(clamp(y, -1.0, 1.0)) / PI;
    float c = cos(angle), n = sin(angle);
    float du = 2.0 * (u - 0.5), dv = v - 0.5;
    float tu = 0.5 + 0.5 * (du * c - dv * n);
    float tv = 0.5 + (du * n + dv * c);
    float su = size.x > 0.0 ? size.x : 1.0;
    float sv = size.y > 0.0 ? size.y : 1.0;
    float rs = (tu - position.x) / su;
    float rt = (tv - position.y) / sv;
    float s = wrap(flip.x ? -rs : rs, repeat.x);
    float t = wrap(flip.y ? -rt : rt, repeat.y);
    vec2 texel = min(floor(vec2(s, t) * imageSize), imageSize - 1.0);
    base *= texture2D(image, (texel + 0.5) / imageSize).rgb;
  }
  vec3 L = normalize(vec3(-0.5, 0.6, 0.8));
  vec3 H = normalize(L + vec3(0.0, 0.0, 1.0));
  vec3 N = vec3(x, y, z);
  float lambert = max(0.0, dot(N, L));
  float highlight = pow(max(0.0, dot(N, H)), 2.0 + 126.0 * clamp(glossiness, 0.0, 1.0));
  float glow = clamp(luminosity, 0.0, 1.0);
  vec3 shaded = base * (glow + (1.0 - glow) * (0.15 + diffuse * lambert)) + specularColor * specular * highlight;
  vec3 result = mix(shaded, bg, 0.5 * clamp(transparency, 0.0, 1.0));
  gl_FragColor = vec4(clamp(result, 0.0, 1.0), 1.0);
}`;

function compile(gl, type, source) {
  const shader = gl.createShader(type);
  gl.shaderSource(shader, source);
  gl.compileShader(shader);
  if (!gl.getShaderParameter(shader, gl.COMPILE_STATUS)) throw new Error(gl.getShaderInfoLog(shader) || 'shader does not compile');
  return shader;
}

/** Draws the sphere into an RGBA pixel array on the CPU, as `rshview preview` does. */
export function renderSphere(m, side, texture) {
  const pixels = new Uint8ClampedArray(side * side * 4);
  const f = Math.fround;
  const len = Math.sqrt(0.25 + 0.36 + 0.64);
  const L = [-0.5 / len, 0.6 / len, 0.8 / len];
  const hl = Math.hypot(L[0], L[1], L[2] + 1);
  const H = [L[0] / hl, L[1] / hl, (L[2] + 1) / hl];
  const exponent = 2 + 126 * Math.min(Math.max(m.glossiness, 0), 1);
  const see = 0.5 * Math.min(Math.max(m.transparency, 0), 1);
  // The luminosity's share of the base colour shows at full strength, the rest is lit.
  const glow = unit(m.luminosity);
  const radius = 0.45 * side;
  const centre = 0.5 * side;
  const textured = m.textured && texture && texture.width > 0;
  const wrap = (t, r) => (r ? t - Math.floor(t) : Math.min(Math.max(t, 0), 0.99999994));
  const c = Math.cos(m.angle);
  const n = Math.sin(m.angle);
  for (let row = 0; row < side; row++) {
    for (let col = 0; col < side; col++) {
      const x = f((col + 0.5 - centre) / radius);
      const y = f((centre - row - 0.5) / radius);
      const rr = x * x + y * y;
      let out = [BACKGROUND, BACKGROUND, BACKGROUND];
      if (rr <= 1) {
        const z = Math.sqrt(1 - rr);
        let base = m.diffuseColor.slice();
        if (textured) {
          const u = 0.5 + Math.atan2(x, z) / (2 * Math.PI);
          const v = 0.5 - Math.asin(Math.min(Math.max(y, -1), 1)) / Math.PI;
          // The image turns about the point facing the viewer, in arc (u once round, v pole to pole).
          const du = 2 * (u - 0.5);
          const dv = v - 0.5;
          const tu = 0.5 + 0.5 * (du * c - dv * n);
          const tv = 0.5 + (du * n + dv * c);
          const su = m.size[0] > 0 ? m.size[0] : 1;
          const sv = m.size[1] > 0 ? m.size[1] : 1;
          const rs = (tu - m.position[0]) / su;
          const rt = (tv - m.position[1]) / sv;
          const s = wrap(m.flip[0] ? -rs : rs, m.repeat[0]);
          const t = wrap(m.flip[1] ? -rt : rt, m.repeat[1]);
          const tx = Math.min(Math.floor(s * texture.width), texture.width - 1);
          const ty = Math.min(Math.floor(t * texture.height), texture.height - 1);
          const at = (ty * texture.width + tx) * 4;
          base = base.map((c, i) => (c * texture.data[at + i]) / 255);
        }
        const lambert = Math.max(0, x * L[0] + y * L[1] + z * L[2]);
        const highlight = Math.max(0, x * H[0] + y * H[1] + z * H[2]) ** exponent;
        const d = glow + (1 - glow) * (0.15 + m.diffuse * lambert);
        const sp = m.specular * highlight;
        out = base.map((c, i) => {
          const shaded = c * d + m.specularColor[i] * sp;
          return shaded + (BACKGROUND - shaded) * see;
        });
      }
      const p = (row * side + col) * 4;
      for (let i = 0; i < 3; i++) pixels[p + i] = Math.round(Math.min(Math.max(out[i], 0), 1) * 255);
      pixels[p + 3] = 255;
    }
  }
  return pixels;
}

/** Loads an image's RGBA pixels (for the CPU path) and the image itself (for WebGL). */
export async function loadTexture(url) {
  const response = await fetch(url);
  if (!response.ok) return null;
  const bitmap = await createImageBitmap(await response.blob(), { premultiplyAlpha: 'none', colorSpaceConversion: 'none' });
  const canvas = new OffscreenCanvas(bitmap.width, bitmap.height);
  const g = canvas.getContext('2d');
  g.drawImage(bitmap, 0, 0);
  return { bitmap, width: bitmap.width, height: bitmap.height, data: g.getImageData(0, 0, bitmap.width, bitmap.height).data };
}

export class Preview {
  constructor(canvas, onMessage) {
    this.canvas = canvas;
    this.onMessage = onMessage;
    this.gl = null;
    try {
      this.gl = canvas.getContext('webgl', { preserveDrawingBuffer: true, antialias: false, premultipliedAlpha: false });
      if (this.gl) this.setUp();
    } catch (e) {
      this.gl = null;
      this.failure = e.message;
    }
    if (!this.gl) {
      this.ctx2d = canvas.getContext('2d');
      onMessage('WebGL is not available in this browser: the preview is drawn in software.');
    }
  }

  get mode() {
    return this.gl ? 'webgl' : 'software';
  }

  setUp() {
    const gl = this.gl;
    const program = gl.createProgram();
    gl.attachShader(program, compile(gl, gl.VERTEX_SHADER, VERTEX));
    gl.attachShader(program, compile(gl, gl.FRAGMENT_SHADER, FRAGMENT));
    gl.linkProgram(program);
    if (!gl.getProgramParameter(program, gl.LINK_STATUS)) throw new Error(gl.getProgramInfoLog(program) || 'no link');
    gl.useProgram(program);
    const buffer = gl.createBuffer();
    gl.bindBuffer(gl.ARRAY_BUFFER, buffer);
    gl.bufferData(gl.ARRAY_BUFFER, new Float32Array([-1, -1, 1, -1, -1, 1, 1, 1]), gl.STATIC_DRAW);
    const corner = gl.getAttribLocation(program, 'corner');
    gl.enableVertexAttribArray(corner);
    gl.vertexAttribPointer(corner, 2, gl.FLOAT, false, 0, 0);
    this.program = program;
    this.texture = gl.createTexture();
    gl.bindTexture(gl.TEXTURE_2D, this.texture);
    for (const [k, v] of [[gl.TEXTURE_MIN_FILTER, gl.NEAREST], [gl.TEXTURE_MAG_FILTER, gl.NEAREST], [gl.TEXTURE_WRAP_S, gl.CLAMP_TO_EDGE], [gl.TEXTURE_WRAP_T, gl.CLAMP_TO_EDGE]]) gl.texParameteri(gl.TEXTURE_2D, k, v);
  }

  /** Draws a material (sphereMaterial's form) with its texture ({bitmap, width, height, data}) or null. */
  draw(m, texture) {
    const side = this.canvas.width;
    if (!this.gl) {
      const image = new ImageData(renderSphere(m, side, texture), side, side);
      this.ctx2d.putImageData(image, 0, 0);
      return;
    }
    const gl = this.gl;
    const u = (name) => gl.getUniformLocation(this.program, name);
    gl.viewport(0, 0, side, side);
    gl.uniform1f(u('side'), side);
    gl.uniform3fv(u('diffuseColor'), m.diffuseColor);
    gl.uniform3fv(u('specularColor'), m.specularColor);
    gl.uniform1f(u('diffuse'), m.diffuse);
    gl.uniform1f(u('specular'), m.specular);
    gl.uniform1f(u('glossiness'), m.glossiness);
    gl.uniform1f(u('transparency'), m.transparency);
    gl.uniform1f(u('luminosity'), unit(m.luminosity));
    const textured = Boolean(m.textured && texture);
    gl.uniform1i(u('textured'), textured ? 1 : 0);
    if (textured) {
      gl.bindTexture(gl.TEXTURE_2D, this.texture);
      gl.pixelStorei(gl.UNPACK_COLORSPACE_CONVERSION_WEBGL, gl.NONE);
      gl.pixelStorei(gl.UNPACK_PREMULTIPLY_ALPHA_WEBGL, false);
      gl.texImage2D(gl.TEXTURE_2D, 0, gl.RGBA, gl.RGBA, gl.UNSIGNED_BYTE, texture.bitmap);
      gl.uniform1i(u('image'), 0);
      gl.uniform2f(u('imageSize'), texture.width, texture.height);
    }
    gl.uniform2fv(u('position'), m.position);
    gl.uniform2fv(u('size'), m.size);
    gl.uniform2i(u('repeat'), m.repeat[0] ? 1 : 0, m.repeat[1] ? 1 : 0);
    gl.uniform2i(u('flip'), m.flip[0] ? 1 : 0, m.flip[1] ? 1 : 0);
    gl.uniform1f(u('angle'), m.angle);
    gl.drawArrays(gl.TRIANGLE_STRIP, 0, 4);
  }
}
