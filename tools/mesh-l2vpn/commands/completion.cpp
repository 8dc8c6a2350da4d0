// completion: what a shell completes the program's words with, made of the program's own options.

#include <iostream>

#include "commands/commands.hpp"
#include "messages/messages.hpp"

namespace tool {
namespace {

std::string optionsOf(const CLI::App& command) {
  std::string words;
  for (const CLI::Option* const option : command.get_options()) {
    for (const std::string& name : option->get_lnames()) {
      words.append(words.empty() ? "--" : " --").append(name);
    }
  }
  return words;
}

// Of options that take a value, which is no command: --color.
std::string optionsWithValue(const CLI::App& app) {
  std::string words;
  for (const CLI::Option* const option : app.get_options()) {
    for (const std::string& name : option->get_lnames()) {
      if (option->get_items_expected_min() > 0) {
        words.append(words.empty() ? "--" : "|--").append(name);
      }
    }
  }
  return words;
}

std::string commandsOf(const CLI::App& app) {
  std::string words;
  for (const CLI::App* const command : app.get_subcommands({})) {
    words.append(words.empty() ? "" : " ").append(command->get_name());
  }
  return words;
}

std::string messageNames() {
  std::string words;
  for (const Message& message : messages()) {
    words.append(words.empty() ? "" : " ").append(message.name);
  }
  return words;
}

void writeBash(const CLI::App& app) {
  std::cout
      << "_mesh_l2vpn() {\n"
         "  local word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD-1]}\n"
         "  local command='' each\n"
         "  local messages='"
      << messageNames() << "'\n  local options='" << optionsOf(app)
      << "'\n"
         "  for ((each = 1; each < COMP_CWORD; ++each)); do\n"
         "    case ${COMP_WORDS[each]} in\n"
         "      "
      << optionsWithValue(app)
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
      << commandsOf(app) << "\" ;;\n";
  for (const CLI::App* const command : app.get_subcommands({})) {
    std::cout << "    " << command->get_name() << ") options=\"$options " << optionsOf(*command)
              << "\" ;;\n";
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

void addCompletion(CLI::App& app, Session& /*session*/) {
  CLI::App* const command =
      app.add_subcommand("completion", "A script that makes a shell complete this program's words");
  const auto shell = makeOptions<std::string>();
  command->add_option("SHELL", *shell, "bash or zsh")
      ->required()
      ->check(CLI::IsMember({"bash", "zsh"}));
  command->footer("Example:\n  source <(mesh-l2vpn completion bash)");
  command->callback([shell, &app] {
    if (*shell == "zsh") {
      // zsh takes bash's.
      std::cout << "autoload -U +X bashcompinit && bashcompinit\n";
    }
    writeBash(app);
  });
}

}  // namespace tool
