# cmake -DFILES=<list> -DOUTPUT=<source> -P embed.cmake: text files as string literals of one C++ source, which defines
# norvane::cli::built_in_check_values().
set(entries "")
foreach(path IN LISTS FILES)
  get_filename_component(name ${path} NAME)
  file(READ ${path} content)
  string(APPEND entries "    {\"${name}\", R\"----(${content})----\"sv},\n")
endforeach()
file(WRITE ${OUTPUT} "#include \"hosts/cli/check_values.h\"

namespace norvane::cli {
namespace {

using std::string_view_literals::operator\"\"sv; // which knows the length: a compiler has not to count

constexpr CheckFile files[] = {
${entries}};

}  // namespace

std::span<const CheckFile> built_in_check_values() { return files; }

}  // namespace norvane::cli
")
