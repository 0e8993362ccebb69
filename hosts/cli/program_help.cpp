// What is written from the description of the program: manual page and completions.
#include <CLI/CLI.hpp>

#include "catalogue/catalogue.h"
#include "core/text.h"
#include "hosts/cli/program.h"

namespace norvane::cli {
namespace {

std::vector<const CLI::App*> commands_of(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App*) { return true; });
}

std::vector<const CLI::Option*> options_of(const CLI::App& app, bool positional) {
  std::vector<const CLI::Option*> list;
  for (const CLI::Option* option : app.get_options())
    if (option->nonpositional() != positional) list.push_back(option);
  return list;
}

// "-h", "--help".
std::vector<std::string> names_of(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames()) names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  return names;
}

// The members of "TEXT:{refuse,default}", none for an option that takes any value.
std::vector<std::string> choices_of(const CLI::Option& option) {
  std::vector<std::string> list;
  const std::string type = option.get_type_name();
  const std::size_t open = type.find('{'), close = type.rfind('}');
  if (open == std::string::npos || close == std::string::npos) return list;
  std::string inside = type.substr(open + 1, close - open - 1);
  // The one list whose members are commas themselves.
  if (inside == ".,,") return {".", ","};
  for (std::size_t from = 0; from <= inside.size();) {
    const std::size_t end = std::min(inside.find(',', from), inside.size());
    list.push_back(inside.substr(from, end - from));
    from = end + 1;
  }
  return list;
}

bool takes_value(const CLI::Option& option) { return option.get_expected_max() > 0; }
bool takes_file(const CLI::Option& option) {
  return option.get_type_name().starts_with("FILE") || option.get_type_name() == "FOLDER";
}

std::string joined(const std::vector<std::string>& list, const char* separator) {
  std::string text;
  for (std::size_t i = 0; i < list.size(); ++i) text.append(i == 0 ? "" : separator).append(list[i]);
  return text;
}

std::vector<std::string> function_names() {
  std::vector<std::string> list;
  for (const Function_CFunctionSpec* spec : catalogue::specifications())
    if (spec->visible()) list.push_back(to_utf8(spec->id));
  return list;
}

bool names_function(const CLI::App& command) {
  const std::vector<const CLI::Option*> list = options_of(command, true);
  return !list.empty() && list.front()->get_name(true) == "id";
}

std::string roff(std::string_view text) {
  std::string out;
  bool line_start = true;
  for (const char c : text) {
    if (line_start && (c == '.' || c == '\'')) out += "\\&";
    if (c == '\\')
      out += "\\e";
    else if (c == '-')
      out += "\\-";
    else
      out += c;
    line_start = c == '\n';
    if (line_start) out += ".br\n";
  }
  return out;
}

std::string manual_options(const CLI::App& app) {
  std::string text;
  for (const bool positional : {true, false})
    for (const CLI::Option* option : options_of(app, positional)) {
      std::string head = positional ? "\\fI" + roff(option->get_name(true)) + "\\fR"
                                    : "\\fB" + roff(joined(names_of(*option), ", ")) + "\\fR";
      if (!positional && takes_value(*option)) {
        const std::vector<std::string> choices = choices_of(*option);
        head += " \\fI" + roff(choices.empty() ? option->get_type_name() : joined(choices, "|")) + "\\fR";
      }
      text += ".TP\n" + head + "\n" + roff(option->get_description()) + "\n";
    }
  return text;
}

// A text within single quotation marks of a shell.
std::string shell_text(std::string_view text) {
  std::string out = "'";
  for (const char c : text) out += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return out + "'";
}

std::string bash_completion(const CLI::App& app) {
  std::string commands, cases;
  for (const CLI::App* command : commands_of(app)) {
    commands += (commands.empty() ? "" : " ") + command->get_name();
    std::string words, values;
    for (const CLI::Option* option : options_of(*command, false)) {
      const std::string names = joined(names_of(*option), " ");
      words += (words.empty() ? "" : " ") + names;
      if (!takes_value(*option)) continue;
      const std::string pattern = joined(names_of(*option), "|");
      const std::vector<std::string> choices = choices_of(*option);
      if (takes_file(*option))
        values += "        " + pattern + ") COMPREPLY=($(compgen -f -- \"$word\")); return ;;\n";
      else if (!choices.empty())
        values += "        " + pattern + ") COMPREPLY=($(compgen -W " + shell_text(joined(choices, " ")) +
                  " -- \"$word\")); return ;;\n";
      else
        values += "        " + pattern + ") return ;;\n";
    }
    cases += "    " + command->get_name() + ")\n      case $before in\n" + values +
             "      esac\n      options=" + shell_text(words) + "\n      " +
             (names_function(*command) ? "takes_function=1" : ":") + " ;;\n";
  }
  return "# Completion of norvane for bash; written by norvane completion bash.\n"
         "_norvane() {\n"
         "  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]} options= takes_function= key\n"
         "  local functions=" +
         shell_text(joined(function_names(), " ")) +
         "\n"
         "  if [ \"$COMP_CWORD\" -eq 1 ]; then\n"
         "    COMPREPLY=($(compgen -W " +
         shell_text(commands + " --help --version") +
         " -- \"$word\"))\n"
         "    return\n"
         "  fi\n"
         "  case ${COMP_WORDS[1]} in\n" +
         cases +
         "  esac\n"
         "  case $word in\n"
         "    -*) COMPREPLY=($(compgen -W \"$options\" -- \"$word\")); return ;;\n"
         "    @*) COMPREPLY=($(compgen -P @ -f -- \"${word#@}\")); return ;;\n"
         "  esac\n"
         "  [ -n \"$takes_function\" ] || { COMPREPLY=($(compgen -f -- \"$word\")); return; }\n"
         "  if [ \"$COMP_CWORD\" -eq 2 ]; then\n"
         "    COMPREPLY=($(compgen -W \"$functions\" -- \"$word\"))\n"
         "    return\n"
         "  fi\n"
         "  compopt -o nospace\n"
         "  while read -r key; do\n"
         "    key=${key// /_}=\n"
         "    case $key in \"$word\"*) COMPREPLY+=(\"$key\") ;; esac\n"
         "  done < <(norvane describe \"${COMP_WORDS[2]}\" --keys 2>/dev/null)\n"
         "}\n"
         "complete -F _norvane norvane\n";
}

std::string zsh_completion(const CLI::App& app) {
  const auto bracketed = [](std::string text) {
    for (std::size_t at = 0; (at = text.find_first_of("[]:\\", at)) != std::string::npos; at += 2)
      text.insert(at, "\\");
    return text;
  };
  std::string commands, cases;
  for (const CLI::App* command : commands_of(app)) {
    commands += "    " + shell_text(command->get_name() + ":" + command->get_description()) + "\n";
    cases += "    " + command->get_name() + ")\n      _arguments \\\n";
    for (const CLI::Option* option : options_of(*command, false)) {
      for (const std::string& name : names_of(*option)) {
        std::string spec = name + "[" + bracketed(option->get_description()) + "]";
        const std::vector<std::string> choices = choices_of(*option);
        if (takes_file(*option))
          spec += ":file:_files";
        else if (!choices.empty())
          spec += ":value:(" + joined(choices, " ") + ")";
        else if (takes_value(*option))
          spec += ":value:";
        cases += "        " + shell_text(spec) + " \\\n";
      }
    }
    cases += names_function(*command) ? "        '2:function:_norvane_functions' '*:input:_norvane_inputs' ;;\n"
                                      : "        '*:file:_files' ;;\n";
  }
  return "#compdef norvane\n"
         "# Completion of norvane for zsh; written by norvane completion zsh.\n"
         "_norvane_inputs() {\n"
         "  local -a keys\n"
         "  keys=(${(f)\"$(norvane describe $words[3] --keys 2>/dev/null)\"})\n"
         "  compadd -S = -- ${keys// /_}\n"
         "}\n"
         "_norvane_functions() {\n"
         "  compadd " +
         joined(function_names(), " ") +
         "\n"
         "}\n"
         "_norvane() {\n"
         "  local -a commands\n"
         "  commands=(\n" +
         commands +
         "  )\n"
         "  if (( CURRENT == 2 )); then\n"
         "    _describe command commands\n"
         "    return\n"
         "  fi\n"
         "  case $words[2] in\n" +
         cases +
         "  esac\n"
         "}\n"
         "_norvane \"$@\"\n";
}

std::string fish_completion(const CLI::App& app) {
  std::string text =
      "# Completion of norvane for fish; written by norvane completion fish.\n"
      "complete -c norvane -f\n";
  const std::string function_list = shell_text(joined(function_names(), " "));
  for (const CLI::App* command : commands_of(app)) {
    const std::string seen = "__fish_seen_subcommand_from " + command->get_name();
    text += "complete -c norvane -n __fish_use_subcommand -a " + command->get_name() + " -d " +
            shell_text(command->get_description()) + "\n";
    for (const CLI::Option* option : options_of(*command, false)) {
      text += "complete -c norvane -n " + shell_text(seen);
      for (const std::string& name : option->get_snames()) text += " -s " + name;
      for (const std::string& name : option->get_lnames()) text += " -l " + name;
      const std::vector<std::string> choices = choices_of(*option);
      if (takes_file(*option))
        text += " -r -F";
      else if (!choices.empty())
        text += " -x -a " + shell_text(joined(choices, " "));
      else if (takes_value(*option))
        text += " -x";
      text += " -d " + shell_text(option->get_description()) + "\n";
    }
    if (!names_function(*command)) continue;
    text += "complete -c norvane -n " + shell_text(seen + "; and test (count (commandline -opc)) -eq 2") + " -a " +
            function_list + "\n";
    text += "complete -c norvane -n " + shell_text(seen + "; and test (count (commandline -opc)) -gt 2") +
            " -a '(norvane describe (commandline -opc)[3] --keys 2>/dev/null | sed \"s/ /_/g; s/\\$/=/\")'\n";
  }
  return text;
}

}  // namespace

std::string manual_page(const CLI::App& app) {
  std::string text = ".TH NORVANE 1 \"\" \"norvane " NORVANE_VERSION "\"\n.SH NAME\nnorvane \\- " +
                     roff(app.get_description()) +
                     "\n.SH SYNOPSIS\n.B norvane\n.I command\n[\\fIargument\\fR ...]\n.SH OPTIONS\n" +
                     manual_options(app) + ".SH COMMANDS\n";
  for (const CLI::App* command : commands_of(app))
    text += ".SS \"norvane " + roff(command->get_name()) + "\"\n" + roff(command->get_description()) + ".\n.PP\n" +
            roff(command->get_footer()) + "\n" + manual_options(*command);
  text += ".SH EXIT STATUS\n" + roff(app.get_footer()) + "\n";
  return text;
}

std::string completion(const CLI::App& app, const std::string& shell) {
  if (shell == "bash") return bash_completion(app);
  return shell == "zsh" ? zsh_completion(app) : fish_completion(app);
}

}  // namespace norvane::cli
