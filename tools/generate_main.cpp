// norvane_generate KIND FILE: writes one kind of output, or nothing at all.
#include <cstdio>
#include <exception>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>

#include "tools/generate.h"

namespace {

using norvane::generate::Writer;

struct Kind {
  std::string_view name;
  Writer writer;
};

constexpr Kind kinds[] = {
    {"excel-wrappers", norvane::generate::excel_wrappers},
    {"excel-exports", norvane::generate::excel_exports},
    {"exports-source", norvane::generate::exports_source},
    {"exports-header", norvane::generate::exports_header},
    {"exports-json", norvane::generate::exports_json},
    {"exports-names", norvane::generate::exports_names},
    {"exports-def", norvane::generate::exports_def},
    {"com-idl", norvane::generate::com_idl},
    {"com-methods", norvane::generate::com_methods},
    {"com-interface", norvane::generate::com_interface},
    {"calc-idl", norvane::generate::calc_idl},
    {"calc-configuration", norvane::generate::calc_configuration},
    {"calc-functions", norvane::generate::calc_functions},
    {"vba", norvane::generate::vba_module},
    {"csharp", norvane::generate::csharp_class},
    {"seal", norvane::generate::seal},
};

int usage() {
  std::fputs("usage: norvane_generate KIND FILE\nkinds:\n", stderr);
  for (const Kind& kind : kinds) std::fprintf(stderr, "  %s\n", std::string(kind.name).c_str());
  return 2;
}

// Under another name first: an interrupted run leaves no half-written file behind.
void write(Writer writer, const std::filesystem::path& file) {
  const std::filesystem::path part = std::filesystem::path(file) += ".part";
  if (file.has_parent_path()) std::filesystem::create_directories(file.parent_path());
  std::ofstream out(part, std::ios::binary);
  out.exceptions(std::ios::badbit | std::ios::failbit);
  writer(out, norvane::catalogue::specifications());
  out.close();
  std::filesystem::rename(part, file);
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) return usage();
  for (const Kind& kind : kinds) {
    if (kind.name != argv[1]) continue;
    try {
      write(kind.writer, argv[2]);
      return 0;
    } catch (const std::exception& error) {
      std::fprintf(stderr, "norvane_generate: %s: %s\n", argv[2], error.what());
      return 1;
    }
  }
  return usage();
}
