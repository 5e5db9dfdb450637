// The server's JSON API (docs/api.md) and the queue that sends the user's events in order.
// A request that cannot reach the server stays queued and is sent again once it answers, so
// nothing typed while the server is away is lost.

export class ApiError extends Error {
  /** `answer`: the whole error answer (a refused event also lists what it did before). */
  constructor(status, error, detail, answer = null) {
    super(typeof detail === 'string' && detail ? `${error}: ${detail}` : error);
    this.status = status;
    this.error = error;
    this.detail = detail;
    this.answer = answer;
  }
}

export class NetworkError extends Error {}

/** A client id for X-Rshview-Client: letters, digits and '-' only. */
export function makeClientId() {
  const bytes = new Uint8Array(8);
  crypto.getRandomValues(bytes);
  return 'tab-' + Array.from(bytes, (b) => b.toString(16).padStart(2, '0')).join('');
}

export function encodeNode(id) {
  return encodeURIComponent(id);
}

export class Api {
  constructor({ clientId = makeClientId(), onBusy = () => {}, onOnline = () => {}, retryMs = 2000 } = {}) {
    this.clientId = clientId;
    this.onBusy = onBusy;
    this.onOnline = onOnline;
    this.retryMs = retryMs;
    this.pending = 0;
    this.busyTimer = null;
    this.queue = [];
    this.sending = false;
    this.online = true;
    this.waitingShown = 0;
    this.retryTimer = null;
  }

  async request(method, url, body) {
    const headers = { 'X-Rshview-Client': this.clientId };
    if (body !== undefined) headers['Content-Type'] = 'application/json';
    this.begin();
    let response;
    try {
      response = await fetch(url, { method, headers, body: body === undefined ? undefined : JSON.stringify(body) });
    } catch (e) {
      throw new NetworkError(`the server does not answer (${e.message})`);
    } finally {
      this.end();
    }
    const type = response.headers.get('Content-Type') || '';
    const data = type.includes('json') ? await response.json().catch(() => null) : null;
    if (!response.ok) {
      if (data && data.error) throw new ApiError(response.status, data.error, data.detail, data);
      throw new ApiError(response.status, `HTTP ${response.status}`, response.statusText);
    }
    this.setOnline(true);
    return data;
  }

  begin() {
    if (this.pending++ === 0) this.busyTimer = setTimeout(() => this.onBusy(true), 150);
  }

  end() {
    if (--this.pending === 0) {
      clearTimeout(this.busyTimer);
      this.onBusy(false);
    }
  }

  /** Tells of a change of state; while offline, also of every change of what waits. */
  setOnline(online) {
    if (this.online === online && (online || this.waitingShown === this.queue.length)) return;
    this.online = online;
    this.waitingShown = this.queue.length;
    this.onOnline(online, this.queue.length);
  }

  document() { return this.request('GET', '/api/document'); }
  /**
   * A node's editor. Its tree comes compact (half the text to read); the view fills in each
   * widget from `defaults` as it draws it (compact.js).
   */
  editor(node, kind) {
    return this.request('GET', `/api/nodes/${encodeNode(node)}/editor?editor=${kind}&compact=1`);
  }
  material(node) { return this.request('GET', `/api/nodes/${encodeNode(node)}/material`); }
  units() { return this.request('GET', '/api/units'); }
  setUnits(units) { return this.request('PUT', '/api/units', units); }
  save() { return this.request('POST', '/api/save', {}); }

  /**
   * Queues one user event; resolves with the server's answer, rejects with an ApiError when the
   * server refuses it. Events go one at a time, in the order they were made.
   */
  send(node, event, route = 'events') {
    return new Promise((resolve, reject) => {
      this.queue.push({ node, event, route, resolve, reject });
      this.pump();
    });
  }

  /** Queues a reset of one parameter to its default (`body`: {parameter, editor}), as send. */
  reset(node, body) { return this.send(node, body, 'reset'); }

  async pump() {
    if (this.sending) return;
    this.sending = true;
    try {
      while (this.queue.length > 0) {
        const item = this.queue[0];
        try {
          const answer = await this.request('POST', `/api/nodes/${encodeNode(item.node)}/${item.route}`, item.event);
          this.queue.shift();
          item.resolve(answer);
        } catch (e) {
          if (e instanceof NetworkError) {
            this.setOnline(false);
            this.scheduleRetry();
            return;
          }
          this.queue.shift();
          item.reject(e);
        }
      }
    } finally {
      this.sending = false;
    }
  }

  scheduleRetry() {
    clearTimeout(this.retryTimer);
    this.retryTimer = setTimeout(() => this.retry(), this.retryMs);
  }

  /** Tries the server again: sends what is queued, or asks for the document when nothing is. */
  async retry() {
    clearTimeout(this.retryTimer);
    if (this.queue.length > 0) return this.pump();
    try {
      await this.document();
    } catch (e) {
      if (e instanceof NetworkError) {
        this.setOnline(false);
        this.scheduleRetry();
      }
    }
  }
}
