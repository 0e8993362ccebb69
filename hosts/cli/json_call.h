// A call as a line of JSON, and its answer as another.
//
//   {"id":7,"function":"AGA8_M","inputs":{"pressure":"870 psia","methane":0.9,"ethane":0.1}}
//   {"id":7,"function":"AGA8_M","ok":true,"status":0,"flags":0,"flag_names":[],"outputs":{"status":0,"z":0.84053,...},
//    "messages":[],"defaulted":["temperature","edition"]}
//
// "ok" is false when there is no result: the call was refused, its status is not 0, or (with "error" beside it and
// nothing else) the line could not be read. In the inputs a flat list is one column and a list of lists is rows; true,
// false and texts stand for themselves, a text for a number may carry a unit, {"error":"#N/A"} is an error value and
// null a blank cell, which only a range may have. A gas may be a list of 22 fractions, an object by the names of its
// components, or those names beside the other inputs. A key left out is an omitted argument; "defaulted" names those
// whose default had a say in the result. Members that a file of check values has beside these ("outputs", tolerances,
// "source") are skipped, so that such a file can be answered as it is.
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "hosts/cli/answer.h"
#include "hosts/cli/reading.h"
#include "hosts/cli/session.h"
#include "hosts/cli/target.h"

namespace norvane::cli {

// Appends the answer of the session's last call, without a line feed. The id is JSON text, empty for none.
void append_answer(std::string& out, const Session& session, std::span<const std::size_t> defaulted,
                   std::string_view id = {});

// Appends {"ok":false,"error":"..."}.
void append_failure(std::string& out, std::string_view message, std::string_view id = {});

class JsonCalls {
 public:
  enum class Answer { good, calculation_failed, unreadable };

  explicit JsonCalls(Reading reading = {});
  ~JsonCalls();

  // Runs one line and appends its answer, without a line feed. A line that cannot be read is answered too.
  Answer answer(std::string_view line, std::string& out);
  // Of the last line that was not unreadable.
  Verdict verdict() const { return verdict_; }

  struct Reader;

 private:
  // The names of one call and what they mean.
  struct Plan {
    explicit Plan(const Function_CFunctionSpec& spec) : targets(spec) {}
    std::vector<std::string> names;
    Targets targets;
  };

  void call(std::string_view line);
  const Function_CFunctionSpec& function(const std::string& id);
  const Targets& targets(const Function_CFunctionSpec& spec);

  Reading reading_;
  Session session_;
  std::unique_ptr<Reader> reader_;
  std::vector<std::size_t> defaulted_;
  Verdict verdict_ = Verdict::good;
  // What lines have named so far, so that a name costs no search the second time.
  std::unordered_map<std::string, const Function_CFunctionSpec*> functions_;
  std::vector<std::unique_ptr<Plan>> plans_;  // of each function, by its position
};

// Reads one JSON value, a list most likely, into the session's call. False when the text is not such a value.
bool read_json_value(Session& session, const Target& target, std::string_view text, const Reading& reading,
                     FUNCTION_ARG& value);

}  // namespace norvane::cli
