#include "hosts/cli/answer.h"

#include "core/text.h"
#include "hosts/cli/record_text.h"
#include "hosts/module/meaning.h"

namespace norvane::cli {
namespace {

constexpr FUNCTION_ARG not_written = {{}, ARG_EMPTY};

bool number_of(const FUNCTION_ARG& value, double& number) {
  if (value.kind != ARG_NUMBER && value.kind != ARG_INTEGER) return false;
  number = value.kind == ARG_NUMBER ? value.number : value.integer;
  return true;
}

}  // namespace

Verdict verdict_of(const Session& session) {
  if (!session.good()) return Verdict::failed;
  Verdict verdict = Verdict::good;
  const Function_CFunctionSpec& spec = session.function();
  for (std::size_t i = 0; i < spec.output_count; ++i) {
    const std::uint32_t type = spec.outputs[i].type;
    double status = 0.0;
    if ((type != enumeration::rangestatus && type != enumeration::rangestatus2) ||
        !number_of(session.output(i), status) || status == 0.0)
      continue;
    if (type == enumeration::rangestatus || status != 1.0) return Verdict::outside;
    verdict = Verdict::extended;
  }
  return verdict;
}

bool has_warning(const Session& session) { return session.good() && !session.messages().empty(); }

const FUNCTION_ARG& shown_output(const Session& session, std::size_t index) {
  const FUNCTION_ARG& value = session.output(index);
  const bool told = session.function().outputs[index].role == 1 || value.kind == ARG_ERROR;
  return session.fallback() && !told ? not_written : value;
}

std::vector<std::string_view> flag_names(std::uint32_t flags) {
  std::vector<std::string_view> names;
  switch (flags & 0xFFFF) {
    case 0: break;
    case FLAG_INPUT_INVALID & 0xFFFF: names.push_back("arguments refused"); break;
    case FLAG_IMPLEMENTATION_FAILED & 0xFFFF: names.push_back("calculation failed"); break;
    case FLAG_OUTPUT_NOT_FINITE & 0xFFFF: names.push_back("result not finite"); break;
    default: names.push_back("failed"); break;
  }
  if ((flags & FLAG_OUTPUT_TRANSPOSED & 0xFFFFFF) != 0) names.push_back("outputs transposed");
  if ((flags & FLAG_OUTPUT_FALLBACK & 0xFFFFFF) != 0) names.push_back("outputs replaced");
  return names;
}

std::string failure_text(const Session& session) {
  const Function_CFunctionSpec& spec = session.function();
  for (std::size_t i = 0; i < spec.output_count; ++i) {
    double status = 0.0;
    if (spec.outputs[i].role != 1 || !number_of(session.output(i), status)) continue;
    const std::string meaning = to_utf8(host::meaning_of(spec.outputs[i], status));
    return "status " + number_text(status) + (meaning.empty() ? "" : " (" + meaning + ")");
  }
  if (session.status() != ERROR_OK) return to_utf8(error_text(session.status()));
  return session.fallback() ? "the call was refused" : "failed";
}

std::vector<ShownMessage> shown_messages(const Session& session) {
  std::vector<ShownMessage> list;
  const bool failed = !session.good();
  for (const Message& message : session.messages())
    list.push_back({(failed && list.size() >= session.remarks()) || message.level == MESSAGE_ERROR, message.text});
  return list;
}

}  // namespace norvane::cli
