// The commands, one per file, with their options.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "inspect/bytes/byte_text.hpp"
#include "inspect/bytes/input.hpp"
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

struct SchemaOptions {
  std::string message;
};
void runSchema(const SchemaOptions& options, Session& session);

struct CompatOptions {
  std::string old;
  std::string recent;
  std::string capture;
  bool isJson = false;
};
void runCompat(const CompatOptions& options, Session& session);

// Of every command that reads one message.
struct InputOptions {
  std::string message;
  std::string file = "-";
  InputForm form = InputForm::Guessed;
  bool isWhole = false;
};

struct DecodeOptions : InputOptions {
  ByteText byteText = ByteText::Hex;
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
};
void runEncode(const EncodeOptions& options, Session& session);

struct ExplainOptions : InputOptions {
  bool isHtml = false;
};
void runExplain(const ExplainOptions& options, Session& session);

struct DiffOptions : InputOptions {
  std::string second;
  bool isJson = false;
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
  uint64_t extra = 0;
};
void runSend(const SendOptions& options, Session& session);

struct ReplayOptions : SenderOptions {
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
  ByteText byteText = ByteText::Hex;
  bool isWhole = false;
};
void runListen(const ListenOptions& options, Session& session);

struct RecordOptions : ReceiverOptions {
  std::string file;
};
void runRecord(const RecordOptions& options, Session& session);

struct StatOptions {
  std::string file;
  bool isJson = false;
};
void runStat(const StatOptions& options, Session& session);

// The words that a shell completes.
struct CompletionOptions {
  struct Command {
    std::string name;
    std::string options;
  };

  std::string shell;
  std::vector<Command> commands;
  std::string options;           // of the program itself
  std::string optionsWithValue;  // those of them that take one
};
void runCompletion(const CompletionOptions& options, Session& session);

}  // namespace tool
