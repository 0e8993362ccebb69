// Lines of JSON as "norvane eval" takes them. What the reader for what programs write makes of a line, the parser of
// the whole language does too, and so does a session that has answered other lines before.
#include <nlohmann/json.hpp>

#include "fuzz/fuzz.h"
#include "hosts/cli/encoding.h"
#include "hosts/cli/json_call.h"

namespace norvane::fuzz {

void json(Input& in) {
  cli::Reading reading;
  const std::size_t choices = in.below(256);
  reading.blank_is_default = (choices & 1) != 0;
  reading.no_defaults = (choices & 2) != 0;
  if ((choices & 4) != 0) reading.decimal = ',';
  if ((choices & 8) != 0) reading.c6plus = {0.5, 0.3, 0.2};
  if ((choices & 16) != 0) reading.atmosphere = 101325.0;
  const std::string_view text = in.rest();
  cli::JsonCalls session(reading);
  for (std::size_t from = 0; from < text.size();) {
    const std::size_t end = std::min(text.find('\n', from), text.size());
    const std::string line(text.substr(from, end - from));
    from = end + 1;
    std::string answer, again;
    const auto kind = session.answer(line, answer);
    expect(nlohmann::json::accept(answer) && answer.find('\n') == std::string::npos, "the answer is no line of JSON",
           line, answer);
    if (kind == cli::JsonCalls::Answer::unreadable) continue;
    // A member that is skipped, with a text that only the parser of the whole language reads.
    std::string slow = line;
    if (line.find("source") == std::string::npos) slow.insert(line.find('{') + 1, "\"source\":\"\\u0041\",");
    cli::JsonCalls fresh(reading);
    expect(fresh.answer(slow, again) == kind && again == answer, "two readers, two answers: " + line, answer, again);
  }
}

}  // namespace norvane::fuzz
