// completion: a script that completes command lines, made from the options of the program.

#include <iostream>

#include "commands/commands.hpp"
#include "inspect/messages/messages.hpp"

namespace tool {
namespace {

std::string commandNames(const CompletionOptions& options) {
  std::string words;
  for (const auto& command : options.commands) {
    words.append(words.empty() ? "" : " ").append(command.name);
  }
  return words;
}

std::string messageNames() {
  std::string words;
  for (const KnownMessage& message : messages()) {
    words.append(words.empty() ? "" : " ").append(message.name);
  }
  return words;
}

void writeBash(const CompletionOptions& options) {
  std::cout
      << "_mesh_l2vpn() {\n"
         "  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}\n"
         "  local command='' each\n"
         "  local messages='"
      << messageNames() << "'\n  local options='" << options.options
      << "'\n"
         "  for ((each = 1; each < COMP_CWORD; ++each)); do\n"
         "    case ${COMP_WORDS[each]} in\n"
         "      "
      << options.optionsWithValue
      << ") each=$((each + 1)) ;;\n"
         "      -*) ;;\n"
         "      *) command=${COMP_WORDS[each]}; break ;;\n"
         "    esac\n"
         "  done\n"
         "  COMPREPLY=()\n"
         "  case $before in\n"
         "    -m|--message|show) COMPREPLY=($(compgen -W \"$messages\" -- \"$word\")); return ;;\n"
         "    --color) COMPREPLY=($(compgen -W 'auto always never' -- \"$word\")); return ;;\n"
         "    --service)\n"
         "      COMPREPLY=($(compgen -W 'l2vpn_cfg l2vpn_stat l2vpn_sync' -- \"$word\"))\n"
         "      return ;;\n"
         "    completion) COMPREPLY=($(compgen -W 'bash zsh' -- \"$word\")); return ;;\n"
         "  esac\n"
         "  case $command in\n"
         "    '') options=\"$options "
      << commandNames(options) << "\" ;;\n";
  for (const auto& command : options.commands) {
    std::cout << "    " << command.name << ") options=\"$options " << command.options << "\" ;;\n";
  }
  std::cout << "  esac\n"
               "  if [[ -z $command || $word == -* ]]; then\n"
               "    COMPREPLY=($(compgen -W \"$options\" -- \"$word\"))\n"
               "  else\n"
               "    COMPREPLY=($(compgen -f -- \"$word\"))\n"
               "  fi\n"
               "}\n"
               "complete -o filenames -F _mesh_l2vpn mesh-l2vpn\n";
}

}  // namespace

void runCompletion(const CompletionOptions& options, Session& /*session*/) {
  if (options.shell == "zsh") {
    // zsh runs bash completions.
    std::cout << "autoload -U +X bashcompinit && bashcompinit\n";
  }
  writeBash(options);
}

}  // namespace tool
