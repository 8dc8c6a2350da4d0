// completion: a script that completes command lines, made from the options of the program.

#include <iostream>

#include "commands/commands.hpp"
#include "inspect/messages/messages.hpp"

namespace tool {
namespace {

using Option = CompletionOptions::Option;

std::string joined(const auto& all, const std::string& before, const char* separator) {
  std::string words;
  for (const auto& each : all) {
    words.append(words.empty() ? "" : separator).append(before).append(each.name);
  }
  return words;
}

std::string longNames(const std::vector<Option>& options) {
  return joined(options, "--", " ");
}

void writeBash(const CompletionOptions& options) {
  std::vector<Option> withValue = options.options;
  std::erase_if(withValue, [](const Option& option) { return !option.takesValue; });
  std::cout << "_mesh_l2vpn() {\n"
               "  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}\n"
               "  local command='' prefix='' each\n"
               "  local messages='"
            << joined(messages(), "", " ") << "'\n  local commands='"
            << joined(options.commands, "", " ") << "'\n  local options='"
            << longNames(options.options)
            << "'\n"
               "  # bash takes --option=value apart, zsh does not.\n"
               "  if [[ $word == = ]]; then\n"
               "    word=''\n"
               "  elif [[ $before == = ]]; then\n"
               "    before=${COMP_WORDS[COMP_CWORD-2]}\n"
               "  elif [[ $word == --*=* ]]; then\n"
               "    before=${word%%=*} prefix=${word%%=*}= word=${word#*=}\n"
               "  fi\n"
               "  for ((each = 1; each < COMP_CWORD; ++each)); do\n"
               "    case ${COMP_WORDS[each]} in\n"
               "      "
            << joined(withValue, "--", "|")
            << ") each=$((each + 1)) ;;\n"
               "      -*|=) ;;\n"
               "      *) command=${COMP_WORDS[each]}; break ;;\n"
               "    esac\n"
               "  done\n"
               "  COMPREPLY=()\n"
               "  local choices=''\n"
               "  case $before in\n"
               "    -m|--message|show|template|schema) choices=$messages ;;\n"
               "    --color) choices='auto always never' ;;\n"
               "    --service) choices='l2vpn_cfg l2vpn_stat l2vpn_sync' ;;\n"
               "    completion) choices='bash fish zsh' ;;\n"
               "    help) choices=$commands ;;\n"
               "  esac\n"
               "  if [[ -n $choices && $word != -* ]]; then\n"
               "    COMPREPLY=($(compgen -P \"$prefix\" -W \"$choices\" -- \"$word\"))\n"
               "    return\n"
               "  fi\n"
               "  case $command in\n"
               "    '') options=\"$options $commands\" ;;\n";
  for (const auto& command : options.commands) {
    std::cout << "    " << command.name << ") options=\"$options " << longNames(command.options)
              << "\" ;;\n";
  }
  std::cout << "  esac\n"
               "  if [[ -z $prefix && ( -z $command || $word == -* ) ]]; then\n"
               "    COMPREPLY=($(compgen -W \"$options\" -- \"$word\"))\n"
               "  else\n"
               "    local IFS=$'\\n'  # file names may have blanks\n"
               "    COMPREPLY=($(compgen -P \"$prefix\" -f -- \"$word\"))\n"
               "  fi\n"
               "}\n";
}

// In single quotes of fish.
std::string quoted(const std::string& text) {
  std::string word;
  for (const char letter : text) {
    word.append(letter == '\'' || letter == '\\' ? "\\" : "").append(1, letter);
  }
  return '\'' + word + '\'';
}

void writeFishOption(const Option& option, const std::string& condition) {
  std::cout << "complete -c mesh-l2vpn" << condition << " -l " << option.name << " -d "
            << quoted(option.description);
  if (option.name == "message") {
    std::cout << " -s m -x -a \"$messages\"";
  } else if (option.name == "color") {
    std::cout << " -x -a 'auto always never'";
  } else if (option.name == "service") {
    std::cout << " -x -a 'l2vpn_cfg l2vpn_stat l2vpn_sync'";
  } else if (option.takesValue) {
    std::cout << " -r";
  }
  std::cout << '\n';
}

void writeFish(const CompletionOptions& options) {
  std::cout << "set -l messages " << joined(messages(), "", " ") << "\nset -l commands "
            << joined(options.commands, "", " ") << '\n';
  for (const Option& option : options.options) {
    writeFishOption(option, "");
  }
  for (const auto& command : options.commands) {
    std::cout << "complete -c mesh-l2vpn -n __fish_use_subcommand -f -a " << command.name << " -d "
              << quoted(command.description) << '\n';
    for (const Option& option : command.options) {
      writeFishOption(option, " -n '__fish_seen_subcommand_from " + command.name + "'");
    }
  }
  for (const auto& [commands, choices] : {std::pair{"show template schema", "$messages"},
                                          {"completion", "bash fish zsh"},
                                          {"help", "$commands"}}) {
    std::cout << "complete -c mesh-l2vpn -n '__fish_seen_subcommand_from " << commands
              << "' -f -a \"" << choices << "\"\n";
  }
}

}  // namespace

void runCompletion(const CompletionOptions& options, Session& /*session*/) {
  if (options.shell == "fish") {
    return writeFish(options);
  }
  constexpr const char* how = " -o filenames -F _mesh_l2vpn";
  if (options.shell == "bash") {
    writeBash(options);
    std::cout << "complete" << how << " mesh-l2vpn\n";
    return;
  }
  // zsh runs bash completions. Installed, this is the body of the function that zsh calls first.
  std::cout << "#compdef mesh-l2vpn\nautoload -U +X bashcompinit && bashcompinit\n";
  writeBash(options);
  std::cout << "complete" << how
            << " mesh-l2vpn\n[[ ${funcstack[1]} != _mesh-l2vpn ]] || _bash_complete" << how << '\n';
}

}  // namespace tool
