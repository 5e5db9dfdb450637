#include "RshviewReply.h"

std::string RshviewJsonText(const nlohmann::ordered_json& json) {
  return json.dump(-1, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
}

RshviewReply RshviewReply::Json(const nlohmann::ordered_json& json, int status) {
  return RshviewReply{status, RshviewJsonText(json), kRshviewJsonType};
}

RshviewReply RshviewReply::Error(int status, const std::string& error,
                                 const nlohmann::ordered_json& detail) {
  return Json({{"error", error}, {"detail", detail}}, status);
}
