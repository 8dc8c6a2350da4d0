// The C interface: shells that check parameters, call the rooms and end exceptions.
#include "mesh_l2vpn/inspect.h"

#include <algorithm>
#include <memory>
#include <optional>

#include "inspect/bytes/text.hpp"
#include "inspect/json/raw_table.hpp"
#include "inspect/json/record_json.hpp"
#include "inspect/messages/codec.hpp"
#include "inspect/messages/image_plan.hpp"
#include "inspect/reader/acceptance.hpp"
#include "inspect/reader/table_reader.hpp"
#include "inspect/schema/compatibility.hpp"
#include "inspect/schema/document.hpp"
#include "inspect/texts/difference.hpp"
#include "inspect/texts/explanation.hpp"
#include "inspect/texts/html_page.hpp"

using inspect::Cause;
using inspect::Failure;
using inspect::Text;

namespace {

static_assert(static_cast<int>(inspect::Acceptance::Tolerated) == MESH_L2VPN_TOLERATED &&
              static_cast<int>(inspect::Acceptance::Rejected) == MESH_L2VPN_REJECTED);
static_assert(static_cast<int>(inspect::Form::Fixed) == MESH_L2VPN_FIXED &&
              static_cast<int>(inspect::Form::Compact) == MESH_L2VPN_COMPACT);

thread_local char lastError[512];

// A text of any length in a field, cut and with a zero at its end.
template <size_t room>
void copyText(char (&to)[room], std::string_view text) {
  const size_t length = std::min(text.size(), room - 1);
  std::memcpy(to, text.data(), length);
  to[length] = '\0';
}

int fail(Cause cause, std::string_view text) {
  copyText(lastError, text);
  return static_cast<int>(cause);
}

// No exception leaves the library.
template <typename Work>
int guarded(Work work) noexcept {
  try {
    work();
    return 0;
  } catch (const Failure& failure) {
    return fail(failure.cause(), failure.what());
  } catch (const std::bad_alloc&) {
    return fail(Cause::Memory, "out of memory");
  } catch (const std::exception& error) {
    return fail(Cause::System, error.what());
  }
}

void expect(bool isSo, const char* text) {
  if (!isSo) {
    throw Failure(Cause::Usage, text);
  }
}

template <typename... Pointers>
void expectPointers(const Pointers*... pointers) {
  expect((true && ... && (pointers != nullptr)), "a parameter is null");
}

std::span<const uint8_t> bytesOf(const void* data, size_t length) {
  return {static_cast<const uint8_t*>(data), length};
}

// Fails with the fault for what receivers reject.
void expectAccepted(const mesh_l2vpn_message& message, std::span<const uint8_t> bytes) {
  mesh_l2vpn_fault fault;
  if (mesh_l2vpn_verify(&message, bytes.data(), bytes.size(), &fault) == MESH_L2VPN_REJECTED) {
    throw Failure(Cause::BadInput,
                  "byte " + std::to_string(fault.position) +
                      (fault.path[0] == '\0' ? "" : std::string(", ") + fault.path) + ": " +
                      fault.text);
  }
}

// Fills the record, or leaves zeros. Returns what it points to.
uint64_t unpackInto(const mesh_l2vpn_message& message, std::span<const uint8_t> bytes,
                    uint8_t* record) {
  std::memset(record, 0, message.schema().size);
  expectAccepted(message, bytes);
  try {
    return inspect::decodeInto(message, bytes, record);
  } catch (const Failure&) {
    inspect::releaseParts(message.schema(), record);
    std::memset(record, 0, message.schema().size);
    throw;
  }
}

// While it lives, a call has only the memory that is left of its limit.
class LimitOfTheRest {
 public:
  explicit LimitOfTheRest(uint64_t taken) { inspect::memoryLimit -= taken; }
  LimitOfTheRest(const LimitOfTheRest&) = delete;
  LimitOfTheRest& operator=(const LimitOfTheRest&) = delete;
  ~LimitOfTheRest() { inspect::memoryLimit = limit_; }

 private:
  uint64_t limit_ = inspect::memoryLimit;
};

void expectForm(mesh_l2vpn_form form) {
  expect(form >= MESH_L2VPN_AS_SENT && form <= MESH_L2VPN_COMPACT, "no such form");
}

// The plan of a message's fixed images, for a form that is one.
std::optional<inspect::ImagePlan> imagePlan(const mesh_l2vpn_message& message,
                                            mesh_l2vpn_form form) {
  std::optional<inspect::ImagePlan> plan;
  if (message.isSentFixed() && form != MESH_L2VPN_COMPACT) {
    plan.emplace(message.schema());
  }
  return plan;
}

// Calls each(0), each(1), ... and tells how many came back.
template <typename Each>
int forMany(size_t count, size_t* done, const char* what, Each each) {
  size_t index = 0;
  const int result = guarded([&] {
    try {
      for (; index < count; ++index) {
        each(index);
      }
    } catch (const Failure& failure) {
      throw Failure(failure.cause(),
                    std::string(what) + std::to_string(index) + ": " + failure.what());
    }
  });
  if (done != nullptr) {
    *done = index;
  }
  return result;
}

struct Release {
  void operator()(void* block) const { std::free(block); }
};

// `taken`: what the call has taken of its memory before.
void handOutMessage(const mesh_l2vpn_message& message, const uint8_t* record, mesh_l2vpn_form form,
                    uint64_t taken, uint8_t** data, size_t* size) {
  expectForm(form);
  const auto chosen = static_cast<inspect::Form>(form);
  const uint32_t needed = inspect::encodedSize(message, record, chosen);
  if (taken + needed > inspect::memoryLimit) {
    inspect::failForMemory("this message", taken + needed);
  }
  std::unique_ptr<uint8_t, Release> block(static_cast<uint8_t*>(std::calloc(needed, 1)));
  if (block == nullptr) {
    throw std::bad_alloc();
  }
  inspect::encodeInto(block.get(), message, record, chosen);
  *size = needed;
  *data = block.release();
}

char* handOut(std::string_view text, uint64_t taken) {
  Text copy(taken + text.size());
  copy.append(text);
  return copy.release();
}

// In name order.
const auto& byName() {
  static const auto order = [] {
    std::vector<const mesh_l2vpn_message*> all;
    for (const mesh_l2vpn_message& message : inspect::messages()) {
      all.push_back(&message);
    }
    std::ranges::sort(all, {}, &mesh_l2vpn_message::name);
    return all;
  }();
  return order;
}

}  // namespace

size_t mesh_l2vpn_message_count() {
  return inspect::messages().size();
}

const mesh_l2vpn_message* mesh_l2vpn_message_at(size_t index) {
  const mesh_l2vpn_message* found = nullptr;
  guarded([&] { found = index < byName().size() ? byName()[index] : nullptr; });
  return found;
}

const mesh_l2vpn_message* mesh_l2vpn_message_by_name(const char* name) {
  return name == nullptr ? nullptr : inspect::findByName(name);
}

const mesh_l2vpn_message* mesh_l2vpn_message_by_id(uint32_t id) {
  return inspect::findById(id);
}

const char* mesh_l2vpn_message_name(const mesh_l2vpn_message* message) {
  return message->name.data();
}

uint32_t mesh_l2vpn_message_id(const mesh_l2vpn_message* message) {
  return message->id();
}

size_t mesh_l2vpn_message_record_size(const mesh_l2vpn_message* message) {
  return message->schema().size;
}

mesh_l2vpn_verdict mesh_l2vpn_verify(const mesh_l2vpn_message* message, const void* data,
                                     size_t length, mesh_l2vpn_fault* fault) {
  auto verdict = inspect::Acceptance::Rejected;
  if (message != nullptr && data != nullptr) {
    verdict = inspect::acceptanceOf(message->schema(), bytesOf(data, length));
  }
  if (fault == nullptr) {
    return static_cast<mesh_l2vpn_verdict>(verdict);
  }
  fault->position = 0;
  fault->path[0] = fault->text[0] = '\0';
  if (verdict == inspect::Acceptance::Accepted) {
    return MESH_L2VPN_ACCEPTED;
  }
  const int result = guarded([&] {
    expectPointers(message, data);
    const bool isTolerated = verdict == inspect::Acceptance::Tolerated;
    const inspect::Verdict found = inspect::judge(*message, bytesOf(data, length));
    const auto first = std::ranges::find(found.faults, isTolerated, &inspect::Fault::isTolerated);
    fault->position = first->at;
    copyText(fault->path, first->path);
    copyText(fault->text, first->text);
  });
  if (result != 0) {
    copyText(fault->text, lastError);
  }
  return static_cast<mesh_l2vpn_verdict>(verdict);
}

int mesh_l2vpn_unpack(const mesh_l2vpn_message* message, const void* data, size_t length,
                      void* record) {
  return guarded([&] {
    expectPointers(message, data, record);
    unpackInto(*message, bytesOf(data, length), static_cast<uint8_t*>(record));
  });
}

int mesh_l2vpn_unpack_many(const mesh_l2vpn_message* message, const void* data, const size_t* ends,
                           size_t count, void* records, size_t* done) {
  std::optional<inspect::ImagePlan> plan;
  const int result = guarded([&] {
    expectPointers(message, data, ends, records);
    plan = imagePlan(*message, MESH_L2VPN_AS_SENT);
  });
  if (result != 0) {
    return result;
  }
  const auto* const from = static_cast<const uint8_t*>(data);
  auto* into = static_cast<uint8_t*>(records);
  size_t begin = 0;
  uint64_t taken = 0;
  return forMany(count, done, "message ", [&](size_t index) {
    expect(ends[index] >= begin, "its end lies before its beginning");
    const std::span bytes(from + begin, ends[index] - begin);
    if (!plan || !plan->read(into, bytes)) {
      const LimitOfTheRest limit(taken);
      taken += unpackInto(*message, bytes, into);
    }
    begin = ends[index];
    into += message->schema().size;
  });
}

void mesh_l2vpn_release(const mesh_l2vpn_message* message, void* record) {
  if (message != nullptr && record != nullptr) {
    inspect::releaseParts(message->schema(), static_cast<uint8_t*>(record));
  }
}

int mesh_l2vpn_pack(const mesh_l2vpn_message* message, const void* record, mesh_l2vpn_form form,
                    uint8_t** data, size_t* size) {
  return guarded([&] {
    expectPointers(message, record, data, size);
    handOutMessage(*message, static_cast<const uint8_t*>(record), form, 0, data, size);
  });
}

int mesh_l2vpn_pack_many(const mesh_l2vpn_message* message, const void* records, size_t count,
                         mesh_l2vpn_form form, void* buffer, size_t room, size_t* ends,
                         size_t* done) {
  std::optional<inspect::ImagePlan> plan;
  const int result = guarded([&] {
    expectPointers(message, records, ends);
    expectForm(form);
    plan = imagePlan(*message, form);
  });
  if (result != 0) {
    return result;
  }
  const auto* from = static_cast<const uint8_t*>(records);
  auto* const into = static_cast<uint8_t*>(buffer);
  size_t begin = 0;
  const auto chosen = static_cast<inspect::Form>(form);
  return forMany(count, done, "record ", [&](size_t index) {
    const size_t size = plan ? plan->length() : inspect::encodedSize(*message, from, chosen);
    if (into != nullptr) {
      expect(size <= room - begin, "the buffer has no room for its message");
      if (plan) {
        plan->write(into + begin, from);
      } else {
        std::memset(into + begin, 0, size);
        inspect::encodeInto(into + begin, *message, from, chosen);
      }
    }
    begin += size;
    ends[index] = begin;
    from += message->schema().size;
  });
}

int mesh_l2vpn_to_json(const mesh_l2vpn_message* message, const void* data, size_t length,
                       char** json) {
  return guarded([&] {
    expectPointers(message, data, json);
    const auto bytes = bytesOf(data, length);
    expectAccepted(*message, bytes);
    inspect::OwnedRecord record(*message);
    record.setUnpacked();
    Text text(inspect::decodeInto(*message, bytes, record.data()));
    inspect::writeRecord(text, message->schema(), record.data());
    *json = text.release();
  });
}

int mesh_l2vpn_record_to_json(const mesh_l2vpn_message* message, const void* record, char** json) {
  return guarded([&] {
    expectPointers(message, record, json);
    Text text;
    inspect::writeRecord(text, message->schema(), static_cast<const uint8_t*>(record));
    *json = text.release();
  });
}

int mesh_l2vpn_from_json(const mesh_l2vpn_message* message, const char* json, size_t length,
                         mesh_l2vpn_form form, uint8_t** data, size_t* size) {
  return guarded([&] {
    expectPointers(message, json, data, size);
    uint64_t taken = 0;
    const inspect::Json parsed = inspect::parseJson({json, length}, taken);
    const auto record = inspect::fromJson(*message, parsed, inspect::ByteText::Hex, taken);
    handOutMessage(*message, record.data(), form, taken, data, size);
  });
}

int mesh_l2vpn_explain(const mesh_l2vpn_message* message, const void* data, size_t length,
                       mesh_l2vpn_view view, char** text) {
  return guarded([&] {
    expectPointers(message, data, text);
    expect(view == MESH_L2VPN_TEXT || view == MESH_L2VPN_HTML, "no such view");
    const auto bytes = bytesOf(data, length);
    const inspect::Reading reading = inspect::readTable(*message, bytes);
    const uint64_t taken = reading.ranges.size() * inspect::rangeSize;
    if (view == MESH_L2VPN_HTML) {
      *text = handOut(inspect::htmlPage(*message, reading, bytes, false), taken);
      return;
    }
    Text lines(taken);
    inspect::explain(*message, reading, bytes, false, inspect::Colors(), lines);
    *text = lines.release();
  });
}

int mesh_l2vpn_difference(const mesh_l2vpn_message* message, const void* first, size_t first_length,
                          const void* second, size_t second_length, char** json) {
  return guarded([&] {
    expectPointers(message, first, second, json);
    const auto one = bytesOf(first, first_length);
    const auto other = bytesOf(second, second_length);
    expectAccepted(*message, one);
    expectAccepted(*message, other);
    *json = handOut(inspect::differenceJson(*message, one, other).dump(), 0);
  });
}

int mesh_l2vpn_identify(const void* data, size_t length, char** json) {
  return guarded([&] {
    expectPointers(data, json);
    *json = handOut(inspect::identification(bytesOf(data, length)).dump(), 0);
  });
}

int mesh_l2vpn_schema(const mesh_l2vpn_message* message, char** json) {
  return guarded([&] {
    expectPointers(json);
    *json = handOut(message == nullptr ? inspect::schemaDocument(inspect::messages()).dump()
                                       : inspect::schemaDocument({message, 1}).dump(),
                    0);
  });
}

int mesh_l2vpn_compat(const char* old_schema, size_t old_length, const char* new_schema,
                      size_t new_length, char** json) {
  return guarded([&] {
    expectPointers(old_schema, new_schema, json);
    uint64_t taken = 0;
    const inspect::LoadedSchema old(inspect::parseJson({old_schema, old_length}, taken));
    const inspect::LoadedSchema recent(inspect::parseJson({new_schema, new_length}, taken));
    *json = handOut(inspect::toJson(inspect::compatibility(old, recent)).dump(), taken);
  });
}

void mesh_l2vpn_set_limit(size_t limit) {
  inspect::memoryLimit = limit == 0 ? inspect::usualMemoryLimit : limit;
}

void mesh_l2vpn_free(void* block) {
  std::free(block);
}

const char* mesh_l2vpn_last_error() {
  return lastError;
}
