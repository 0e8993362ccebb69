// A call as a line of JSON, and its answer as another.
//
//   {"function":"AGA8_M","inputs":{"pressure":60,"composition":[0.965,0.003,...]}}
//   {"function":"AGA8_M","status":0,"flags":0,"outputs":{"status":0,"z":0.84053,...},"messages":[]}
//
// In the inputs a flat list is one column and a list of lists is rows; true, false and texts stand for themselves,
// {"error":"#N/A"} is an error value and null a blank cell. A key left out is an omitted argument. Members that a
// file of check values has beside these ("outputs", tolerances, "source") are skipped, so that such a file can be
// answered as it is.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "hosts/cli/session.h"

namespace norvane::cli {

// Appends the answer of the session's last call, without a line feed.
void append_answer(std::string& out, const Session& session);

// Appends {"error":"..."}.
void append_failure(std::string& out, std::string_view message);

class JsonCalls {
 public:
  enum class Answer { good, calculation_failed, unreadable };

  JsonCalls();
  ~JsonCalls();

  // Runs one line and appends its answer, without a line feed. A line that cannot be read is answered too.
  Answer answer(std::string_view line, std::string& out);

  struct Reader;

 private:
  void call(std::string_view line);
  const Function_CFunctionSpec& function(const std::string& id);
  std::size_t input(const Function_CFunctionSpec& spec, const std::string& key, std::size_t expected);

  Session session_;
  std::unique_ptr<Reader> reader_;
  // What lines have named so far, so that a name costs no conversion the second time.
  std::unordered_map<std::string, const Function_CFunctionSpec*> functions_;
  std::vector<std::vector<std::string>> inputs_;  // keys of each function, by its position
};

// Reads one JSON value, a list most likely, into the session's call. False when the text is not such a value.
bool read_json_value(Session& session, std::string_view text, std::string_view name, FUNCTION_ARG& value);

}  // namespace norvane::cli
