// norvane: the calculation library from the command line.
#include <exception>
#include <new>

#include "hosts/cli/platform.h"
#include "hosts/cli/program.h"

namespace {

using namespace norvane::cli;

void tell_error(const char* text) noexcept {
  tell("norvane: ");
  tell(text);
  tell("\n");
}

}  // namespace

int main(int argc, char** argv) {
  try {
    prepare_standard_streams();
    Output out;
    const ExitCode code = Program().run(arguments(argc, argv), out);
    out.flush();
    return code;
  } catch (const UsageError& error) {
    tell_error(error.what());
    return exit_usage;
  } catch (const std::bad_alloc&) {
    tell_error("not enough memory");
    return exit_io;
  } catch (const std::exception& error) {
    tell_error(error.what());
    return exit_io;
  }
}
