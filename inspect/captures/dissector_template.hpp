// The parts of the dissector that do not depend on the schemas.
#pragma once

namespace inspect {

inline constexpr const char* dissectorHead =
    R"lua(-- Shows captures of mesh-l2vpn (pcapng, link type user 0). Written by `mesh-l2vpn dissector`.
--
--   mesh-l2vpn dissector > ~/.local/lib/wireshark/plugins/mesh_l2vpn.lua

)lua";

inline constexpr const char* dissectorTail = R"lua(
local proto = Proto("mesh_l2vpn", "Layer-2 VPN message")
local header = {
  source = ProtoField.uint32("mesh_l2vpn.source", "Source"),
  destination = ProtoField.uint32("mesh_l2vpn.destination", "Destination"),
  identifier = ProtoField.uint32("mesh_l2vpn.identifier", "Identifier", base.HEX),
  message = ProtoField.string("mesh_l2vpn.message", "Message"),
  extra = ProtoField.uint64("mesh_l2vpn.extra", "Extra"),
}
local fault = ProtoExpert.new("mesh_l2vpn.fault", "Fault", expert.group.MALFORMED, expert.severity.ERROR)
local tolerated = ProtoExpert.new("mesh_l2vpn.tolerated", "Tolerated fault",
                                  expert.group.MALFORMED, expert.severity.WARN)
local unknown = ProtoExpert.new("mesh_l2vpn.unknown", "Unknown message", expert.group.UNDECODED,
                                expert.severity.NOTE)
local cut = ProtoExpert.new("mesh_l2vpn.cut", "Shortened", expert.group.UNDECODED,
                            expert.severity.NOTE)
proto.experts = {fault, tolerated, unknown, cut}

local fields = {}
for _, field in pairs(header) do table.insert(fields, field) end
for record, slots in pairs(records) do
  for _, slot in ipairs(slots) do
    local filter = "mesh_l2vpn." .. record .. "." .. slot.name
    if slot.kind == "scalar" then
      slot.field = ProtoField["uint" .. 8 * slot.size](filter, slot.name)
    elseif slot.kind == "array" or slot.kind == "bytes" then
      slot.field = ProtoField.bytes(filter, slot.name)
    else
      slot.field = ProtoField.string(filter, slot.name)
    end
    table.insert(fields, slot.field)
  end
end
proto.fields = fields

local past_32_bits = 0x100000000
-- Each line takes memory in Wireshark, and a hostile message may ask for any number.
local most_lines = 20000

-- Adds one message to the tree, by the rules of the library's reader.
local function dissect(tvb, root_record, tree)
  local length = tvb:len()
  local is_tolerant = false
  local is_rejected = false
  local lines = 0
  local read_table

  -- Whether there is room for one more line. Reading continues without it.
  local function has_room()
    lines = lines + 1
    if lines == most_lines then
      tree:add_proto_expert_info(cut, "more than " .. most_lines .. " lines are not shown")
    end
    return lines < most_lines
  end

  -- Always shows the first fault that rejects the message.
  local function fail(item, text)
    local rejects = not is_tolerant and not is_rejected
    is_rejected = is_rejected or rejects
    if has_room() or rejects then
      item:add_proto_expert_info(is_tolerant and tolerated or fault, text)
    end
    return false
  end
  local function holds(at, size) return at + size <= length end
  local function u16(at) return tvb(at, 2):le_uint() end
  local function u32(at) return tvb(at, 4):le_uint() end

  local function follow(at, item)
    if not holds(at, 4) then return fail(item, "the offset word at " .. at .. " passes the end") end
    local target = at + u32(at)
    if target >= past_32_bits then return fail(item, "points beyond 32 bits") end
    return true, target
  end

  local function read_bytes(slot, at, item)
    local is_good, target = follow(at, item)
    if not is_good then return false end
    if not holds(target, 4) then return fail(item, slot.name .. " points to " .. target .. ", past the end") end
    local count = u32(target)
    if not holds(target + 4, count) then
      return fail(item, slot.name .. ": " .. count .. " bytes, but only " .. length - target - 4 .. " are left")
    end
    if has_room() then
      if count == 0 then
        item:add(slot.field, tvb(target, 4)):set_text(slot.name .. ": ")
      else
        item:add(slot.field, tvb(target + 4, count))
      end
    end
    if slot.kind == "array" and count ~= slot.size then
      return fail(item, slot.name .. ": " .. count .. " bytes instead of " .. slot.size)
    end
    return true
  end

  local function read_vector(slot, at, item)
    local is_good, target = follow(at, item)
    if not is_good then return false end
    if not holds(target, 4) then return fail(item, slot.name .. " points to " .. target .. ", past the end") end
    local count = u32(target)
    if not holds(target + 4, 4 * count) then
      return fail(item, slot.name .. ": " .. count .. " items, whose offset words pass the end")
    end
    if slot.size * count >= past_32_bits then return fail(item, slot.name .. ": too many items") end
    local items = item
    if has_room() then
      items = item:add(slot.field, tvb(target, 4), "")
      items:set_text(slot.name .. ": " .. count .. " of " .. slot.nested)
    end
    for number = 0, count - 1 do
      local word = target + 4 + 4 * number
      local one = items
      if has_room() then one = items:add(proto, tvb(word, 4), "[" .. number .. "]: " .. slot.nested) end
      local leads, where = follow(word, one)
      is_good = leads and read_table(slot.nested, where, one) and is_good
    end
    return is_good
  end

  local function read_nested(record, slot, at, item)
    local was_tolerant = is_tolerant
    is_tolerant = is_tolerant or record.tolerant
    local nested = item
    if has_room() then
      nested = item:add(slot.field, holds(at, 4) and tvb(at, 4) or tvb(), "")
      nested:set_text(slot.name .. ": " .. slot.nested)
    end
    local is_good, target = follow(at, nested)
    is_good = is_good and read_table(slot.nested, target, nested)
    is_tolerant = was_tolerant
    return is_good or record.tolerant
  end

  local function add_absent(slot, at, item)
    if not has_room() then return end
    if slot.kind == "scalar" then
      local zero = slot.size == 8 and UInt64(0, 0) or 0
      item:add(slot.field, zero):set_generated()
    else
      item:add(slot.field, tvb(at, 0), ""):set_text("[" .. slot.name .. ": absent]")
    end
  end

  local function read_slot(record, slot, at, item)
    if slot.kind == "scalar" then
      if not holds(at, slot.size) then
        return fail(item, slot.name .. ": " .. slot.size .. " bytes at " .. at .. " pass the end")
      end
      if has_room() then item:add_le(slot.field, tvb(at, slot.size)) end
      return true
    elseif slot.kind == "table" then
      return read_nested(record, slot, at, item)
    elseif slot.kind == "vector" then
      return read_vector(slot, at, item)
    end
    return read_bytes(slot, at, item)
  end

  function read_table(name, at, item)
    local record = records[name]
    local largest = length - 4
    if at < 4 or at > largest then return fail(item, "a table at " .. at .. ", not in 4 to " .. largest) end
    local vtable = (at - u32(at)) % past_32_bits
    if vtable < 4 or vtable > largest then
      return fail(item, "a vtable at " .. vtable .. ", not in 4 to " .. largest)
    end
    local size = u16(vtable)
    if not holds(vtable, size) then
      return fail(item, "a vtable of " .. size .. " bytes, but only " .. length - vtable .. " are left")
    end
    local is_good = true
    for index, slot in ipairs(record) do
      local entry_at = 2 + 2 * index
      local entry = entry_at + 2 <= size and u16(vtable + entry_at) or 0
      if entry == 0 then
        add_absent(slot, at, item)
      else
        is_good = read_slot(record, slot, at + entry, item) and is_good
      end
    end
    return is_good
  end

  if length < 4 then return fail(tree, "a message cannot have " .. length .. " bytes") end
  return read_table(root_record, u32(0), tree)
end

function proto.dissector(tvb, pinfo, tree)
  if tvb:len() < 32 or tvb(0, 4):string() ~= "MESH" or tvb(4, 2):le_uint() ~= 1 then return 0 end
  local header_length = tvb(6, 2):le_uint()
  if header_length < 32 or header_length > tvb:len() then return 0 end
  local identifier = tvb(16, 4):le_uint()
  local name = messages[identifier]
  pinfo.cols.protocol = "MESH-L2VPN"
  pinfo.cols.src = tostring(tvb(8, 4):le_uint())
  pinfo.cols.dst = tostring(tvb(12, 4):le_uint())
  pinfo.cols.info = name or string.format("unknown message 0x%08X", identifier)
  local item = tree:add(proto, tvb(), "Layer-2 VPN message: " .. (name or "unknown"))
  item:add_le(header.source, tvb(8, 4))
  item:add_le(header.destination, tvb(12, 4))
  item:add_le(header.identifier, tvb(16, 4))
  item:add_le(header.extra, tvb(24, 8))
  if not name then
    item:add_proto_expert_info(unknown, string.format("no message has the identifier 0x%08X", identifier))
    return tvb:len()
  end
  item:add(header.message, tvb(16, 4), name)
  local size = tvb:len() - header_length
  if size < 4 then
    item:add_proto_expert_info(fault, "a message cannot have " .. size .. " bytes")
  else
    dissect(tvb(header_length):tvb(), name, item)
  end
  return tvb:len()
end

DissectorTable.get("wtap_encap"):add((wtap_encaps or wtap).USER0, proto)
)lua";

}  // namespace inspect
