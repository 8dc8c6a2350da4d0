// The commands, one per file, with their options.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "inspect/bytes/input.hpp"
#include "inspect/captures/selection.hpp"
#include "session.hpp"

namespace tool {

struct ListOptions {
  std::string service;
  bool isJson = false;
};
void runList(const ListOptions& options, Session& session);

struct ShowOptions {
  std::string message;
  bool isJson = false;
};
void runShow(const ShowOptions& options, Session& session);

struct TemplateOptions {
  std::string message;
};
void runTemplate(const TemplateOptions& options, Session& session);

struct SchemaOptions {
  std::string message;
  bool isJsonSchema = false;
};
void runSchema(const SchemaOptions& options, Session& session);

struct CompatOptions {
  std::string old;
  std::string recent;
  std::string capture;
  bool isJson = false;
};
void runCompat(const CompatOptions& options, Session& session);

// Which tables of a capture.
struct SelectionOptions {
  std::optional<uint64_t> packet;
  std::optional<uint32_t> source;
  std::optional<uint32_t> destination;
  std::string since;
  std::string until;
  std::vector<std::string> where;

  [[nodiscard]] bool isEmpty() const {
    return !packet && !source && !destination && since.empty() && until.empty() && where.empty();
  }
};
// `message` may be empty. Fails for a wrong option.
Selection selectionOf(const SelectionOptions& options, const std::string& message);

// Of every command that reads one message.
struct InputOptions : SelectionOptions {
  std::string message;
  std::string file = "-";
  InputForm form = InputForm::Guessed;
};

struct DecodeOptions : InputOptions {
  JsonStyle style{.isWhole = false};
  bool isOnOneLine = false;
  bool isCapture = false;
};
void runDecode(const DecodeOptions& options, Session& session);

struct EncodeOptions {
  std::string message;
  std::string file = "-";
  ByteText byteText = ByteText::Hex;
  bool isFixed = false;
  bool isCompact = false;
  bool isHex = false;
  bool isCapture = false;
  std::optional<uint64_t> packet;
};
void runEncode(const EncodeOptions& options, Session& session);

struct ExplainOptions : InputOptions {
  bool isHtml = false;
  bool isWhole = false;
};
void runExplain(const ExplainOptions& options, Session& session);

struct DiffOptions : InputOptions {
  std::string second;
  bool isJson = false;
  bool isWhole = false;
};
void runDiff(const DiffOptions& options, Session& session);

// Of every command that sends.
struct SenderOptions {
  std::string middleware;
  uint32_t from = 0;  // 0: an address of this process
  std::optional<uint32_t> to;
  std::string file = "-";
};

struct SendOptions : SenderOptions {
  std::string message;
  ByteText byteText = ByteText::Hex;
  std::optional<uint64_t> extra;
};
void runSend(const SendOptions& options, Session& session);

struct ReplayOptions : SenderOptions, SelectionOptions {
  std::string message;
  double speed = 1;
  double rate = 0;
  bool isAtOnce = false;
};
void runReplay(const ReplayOptions& options, Session& session);

// Of every command that receives.
struct ReceiverOptions {
  std::string middleware;
  uint32_t address = 0;
  uint64_t count = 0;
  double seconds = 0;
};

struct ListenOptions : ReceiverOptions {
  JsonStyle style{.isWhole = false};
};
void runListen(const ListenOptions& options, Session& session);

struct RecordOptions : ReceiverOptions {
  std::string file;
  bool isOverwriting = false;
};
void runRecord(const RecordOptions& options, Session& session);

struct StatOptions : SelectionOptions {
  std::string message;
  std::string file;
  bool isJson = false;
};
void runStat(const StatOptions& options, Session& session);

// The words that a shell completes.
struct CompletionOptions {
  struct Option {
    std::string name;
    std::string description;
    bool takesValue;
  };
  struct Command {
    std::string name;
    std::string description;
    std::vector<Option> options;
  };

  std::string shell;
  std::vector<Command> commands;
  std::vector<Option> options;  // of the program itself
};
void runCompletion(const CompletionOptions& options, Session& session);

}  // namespace tool
