#include "commands/inputs.hpp"

namespace tool {
namespace {

uint64_t timeNamed(const std::string& option, const std::string& text, uint64_t otherwise) {
  const auto time = text.empty() ? std::optional(otherwise) : timeFromText(text);
  if (!time) {
    throw Failure(Cause::Usage, option + ": '" + text + "' is no time, as 2026-11-21T09:28:00Z");
  }
  return *time;
}

Input readPacket(std::unique_ptr<InputFile> file, uint64_t packet) {
  const std::string name = file->name() + ": packet " + std::to_string(packet);
  auto reader = std::make_unique<CaptureReader>(std::move(file));
  Selection selection;
  selection.packet = packet;
  const std::optional<Table> table = nextSelected(*reader, selection);
  if (!table) {
    reader->throwFault();
    throw Failure(Cause::BadInput,
                  name + (reader->packets() < packet
                              ? " is not there; the last is " + std::to_string(reader->packets())
                              : " is no table"));
  }
  return {name, {table->bytes.begin(), table->bytes.end()}, messageOf(*table), std::move(reader)};
}

}  // namespace

void refuseSelection(const SelectionOptions& options, const std::string& file) {
  if (!options.isEmpty()) {
    throw Failure(Cause::Usage, file + " is no capture; nothing can be selected from it");
  }
}

Selection selectionOf(const SelectionOptions& options, const std::string& message) {
  Selection selection;
  selection.message = message.empty() ? nullptr : &messageNamed(message);
  selection.source = options.source;
  selection.destination = options.destination;
  selection.since = timeNamed("--since", options.since, 0);
  selection.until = timeNamed("--until", options.until, UINT64_MAX);
  selection.packet = options.packet;
  for (const std::string& condition : options.where) {
    selection.conditions.emplace_back(condition);
  }
  selection.check();
  return selection;
}

Input readInput(std::unique_ptr<InputFile> file, InputForm form,
                const std::optional<uint64_t>& packet) {
  if (packet && form == InputForm::Guessed && isCapture(*file)) {
    return readPacket(std::move(file), *packet);
  }
  if (packet) {
    throw Failure(Cause::Usage, file->name() + " is no capture; --packet needs one");
  }
  return {file->name(), readBytes(*file, form), nullptr, nullptr};
}

Choice chosenMessage(const std::string& named, const Input& input) {
  if (named.empty() && input.message != nullptr) {
    return {*input.message, ""};
  }
  try {
    return chooseMessage(named, input.bytes);
  } catch (const Failure& failure) {
    throw Failure(failure.cause(), (named.empty() ? input.name + ": " : "") + failure.what());
  }
}

void readLines(const std::string& file, ByteText form,
               const std::function<void(const Table& table)>& take) {
  InputFile opened(file);
  uint64_t number = 0;
  while (const std::optional<std::string> line = readLine(opened)) {
    ++number;
    if (line->find_first_not_of(" \t\r") == std::string::npos) {
      continue;
    }
    const auto failAt = [&](const Failure& failure, Cause cause) {
      throw Failure(cause, file + ": line " + std::to_string(number) + ": " + failure.what());
    };
    std::optional<OwnedTable> owned;
    try {
      uint64_t memory = 0;
      const Json json = parseJson(*line, memory);
      owned = tableFromJson(json, form, memory);
    } catch (const Failure& failure) {
      failAt(failure, Cause::BadInput);
    }
    try {
      take(owned->table);
    } catch (const Failure& failure) {
      failAt(failure, failure.cause());
    }
  }
}

}  // namespace tool
