#!/usr/bin/env bash
# The commands on files: output and exit status.
#
#   commands.sh MESH-L2VPN WRITE_CAPTURE
tool=$1
write_capture=$2
announced=$(realpath "$(dirname "$0")/../../../abi/fingerprints.txt")
. "$(dirname "$0")/expect.sh"
cd "$work"

message=l2vpn_sync_vpls_ac_update
echo '{"f0": 7, "f1": {"f0": 42, "f6": 1042, "f8": "010000000000000000000000"}}' >update.json

expect_exit 0 "$tool" list
[ "$(wc -l <out)" -eq $((1 + $(wc -l <"$announced"))) ] ||
  fail "list does not have a head and a line for each announced message"
expect_exit 0 "$tool" show 0x5EED5F0D
expect_text out "fixed         120 bytes"
expect_exit 0 "$tool" show $message --json
expect_text out '"fixedPosition": 10'
expect_exit 2 "$tool" show l2vpn_sync_vpls_acc
expect_text err "did you mean l2vpn_sync_vpls_ac"
expect_exit 2 "$tool" show 5EED5F0D
expect_text err "did you mean 0x5EED5F0D"

expect_exit 0 "$tool" schema
cp out all.json
expect_exit 0 "$tool" compat all.json all.json
expect_text out same
sed '0,/"recordOffset": 2/s//"recordOffset": 3/' all.json >wrong.json
expect_exit 1 "$tool" compat all.json wrong.json
expect_text err "are not its layout"
sed '0,/"identifier": "0x/s//"identifier": "0x1/' all.json >other.json
expect_exit 1 "$tool" compat all.json other.json
expect_text out "a new reader of old messages: incompatible"

"$tool" encode -m $message update.json >fixed.bin
"$tool" encode -m $message --compact <update.json >compact.bin
[ "$(stat -c %s fixed.bin)" -eq 120 ] || fail "the fixed update is not 120 bytes"
[ "$(stat -c %s compact.bin)" -eq 96 ] || fail "the compact update is not 96 bytes"
"$tool" encode -m $message --compact --hex update.json >compact.hex
for file in fixed.bin compact.bin compact.hex; do
  expect_exit 0 "$tool" decode -m $message --line "$file"
  expect_text out '{"f0":7,"f1":{"f0":42,"f1":0,"f2":0,"f3":0,"f4":0,"f5":0,"f6":1042,'
done
expect_exit 0 "$tool" decode compact.bin
expect_text out '"vtableLength": 8'
expect_text out '"fit": "exact"'

echo '{"f1": {"f99": 1}}' >unknown.json
expect_exit 1 "$tool" encode -m $message unknown.json
expect_text err "f1.f99: l2vpn_sync_vpls_ac has no such field"
echo '{}' >empty.json
expect_exit 2 "$tool" encode -m dbginfo_key_l2vpn --fixed empty.json
expect_exit 3 "$tool" encode -m $message missing.json
for command in decode explain encode "diff compact.bin"; do
  # shellcheck disable=SC2086
  expect_exit 2 "$tool" $command -m '' compact.bin
done

head -c 91 compact.bin >cut.bin
expect_exit 1 "$tool" decode -m $message cut.bin
expect_text err "byte 80, f1.f9: 12 bytes, but only 7 are left"
expect_text out '"f6": 1042'
head -c 10 compact.bin >stump.bin
expect_exit 1 "$tool" decode -m $message stump.bin
[ ! -s out ] || fail "a rejected message is printed"
expect_exit 0 "$tool" --quiet decode -m $message compact.bin
[ ! -s err ] || fail "--quiet says something"

expect_exit 0 "$tool" explain -m $message compact.bin
expect_text out "offset word                    28: points to 46"
expect_exit 1 "$tool" explain -m $message cut.bin
expect_text out "^^ byte 80, f1.f9: 12 bytes, but only 7 are left"
expect_exit 0 "$tool" --color always explain -m $message compact.bin
expect_text out $'\033['
expect_exit 0 "$tool" explain -m $message compact.bin
! grep -q $'\033' out || fail "colours without a terminal"
expect_exit 0 "$tool" explain --html -m $message fixed.bin
expect_text out '<title>'
! grep -qE '(src|href)=' out || fail "the page is not self-contained"

sed 's/1042/1043/' update.json | "$tool" encode -m $message --compact >other.bin
expect_exit 0 "$tool" diff -m $message compact.bin compact.bin
expect_exit 1 "$tool" diff -m $message compact.bin other.bin
expect_text out "f1.f6  1042   1043"
expect_text out "54    f1.f6 value   12     13"
expect_exit 1 "$tool" diff --json -m $message compact.bin other.bin
tr -d ' \n' <out >line
expect_text line '"fields":[{"path":"f1.f6","first":1042,"second":1043}]'
expect_text line '"bytes":[{"at":54,"meaning":"f1.f6value","first":"12","second":"13"}]'
expect_exit 1 "$tool" --quiet diff --json -m $message compact.bin fixed.bin
tr -d ' \n' <out >line
expect_text line '{"firstLength":96,"secondLength":120,"fields":[],"bytes":[{"at":0,'
expect_exit 0 "$tool" diff --json -m $message compact.bin compact.bin
tr -d ' \n' <out >line
expect_text line '"fields":[],"bytes":[]}'

# Bytes of all lengths, with base64 from another program.
for length in $(seq 0 40); do
  text=$(head -c "$length" "$tool" | base64 -w 0)
  echo "{\"f3\": \"$text\"}" | "$tool" encode --base64 -m dbginfo_key_l2vpn >key.bin
  expect_exit 0 "$tool" decode --line --base64 -m dbginfo_key_l2vpn key.bin
  expect_text out "\"f3\":\"$text\"}"
done
tail -c 40 key.bin | cmp - <(head -c 40 "$tool") || fail "other bytes were encoded"
echo '{"f1": {"f8": "AAAA!AAAAAAAAAAA"}}' >bad.json
expect_exit 1 "$tool" encode --base64 -m $message bad.json
expect_text err "f1.f8: not a base64 digit at character 4"

# Damaged lists of items end no command early.
list=l2vpn_cfg_query_dfx_rec
echo '{"f1": [{"f1": 7}, {"f1": 8}]}' | "$tool" encode -m $list >list.bin
for at in 21 24 38 42 46 48 54 58 62; do  # words, a count, vtables, entries
  cp list.bin hostile.bin
  printf '\377' | dd of=hostile.bin bs=1 seek=$at conv=notrunc status=none
  "$tool" decode hostile.bin >raw 2>err || expect_text err "byte "
  "$tool" explain --all -m $list hostile.bin >out || [ $? -eq 1 ] || fail "explain ends badly"
  expect_text out "$list: "
  "$tool" explain --html -m $list hostile.bin >out || [ $? -eq 1 ] || fail "explain ends badly"
  expect_text out '</html>'
  for command in "decode --line -m $list hostile.bin" "diff -m $list list.bin hostile.bin"; do
    # shellcheck disable=SC2086
    "$tool" $command >out 2>err || [ $? -eq 1 ] || fail "$command ends badly"
    ! grep -q "too large" err || fail "$command encodes what was rejected"
  done
done
"$write_capture" damaged.pcapng 1020 damaged
expect_exit 1 "$tool" decode damaged.pcapng
[ "$(wc -l <out)" -eq 1020 ] || fail "a damaged table ends decode"
expect_exit 0 "$tool" stat --json damaged.pcapng
[ "$(sed -n '/"all"/,$ s/ *"tables": \([0-9]*\),/\1/p' out)" -eq 1020 ] || fail "a damaged table ends stat"

expect_exit 0 "$tool" completion bash
bash -n out || fail "the completion script is not valid bash"
bash -c '. ./out; COMP_WORDS=(mesh-l2vpn exp); COMP_CWORD=1; _mesh_l2vpn
         [ "${COMPREPLY[*]}" = explain ]' || fail "explain is not completed"
bash -c '. ./out; COMP_WORDS=(mesh-l2vpn decode -m l2vpn_sync_stp); COMP_CWORD=3; _mesh_l2vpn
         [ "${#COMPREPLY[@]}" -eq 3 ]' || fail "messages are not completed"

bash -c '. ./out; COMP_WORDS=(mesh-l2vpn --color always dec); COMP_CWORD=3; _mesh_l2vpn
         [ "${COMPREPLY[*]}" = decode ]' || fail "decode is not completed after an option"

# completes EXPECTED WORD...: the words before and at the cursor, as bash takes them apart.
completes() {
  local expected=$1
  shift
  bash -c '. "$0"; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _mesh_l2vpn
           printf "%s\n" "${COMPREPLY[@]}"' "$work/out" mesh-l2vpn "$@" >completed
  diff completed <(printf -- "$expected") || fail "completion of $*"
}
touch 'name with blanks.bin' 'name.bin'
completes 'name with blanks.bin\nname.bin\n' decode name
completes 'l2vpn_sync_stp_update\n' decode --message = l2vpn_sync_stp_u
[ "$(bash -c '. ./out; COMP_WORDS=(mesh-l2vpn decode --message =); COMP_CWORD=3; _mesh_l2vpn
              echo ${#COMPREPLY[@]}')" -eq "$(wc -l <"$announced")" ] || fail "no messages after --message="
completes '--help\n' decode --hel
completes 'template\n' help temp
completes 'fish\n' completion f
expect_exit 0 "$tool" completion fish
if command -v fish >/dev/null; then
  cp out completion.fish
  expect_exit 0 env HOME="$work" fish -c 'source completion.fish; complete -C "mesh-l2vpn exp"'
  expect_text out "explain"
  expect_exit 0 env HOME="$work" fish -c 'source completion.fish; complete -C "mesh-l2vpn decode --big"'
  expect_text out "--big-as-text"
  expect_exit 0 env HOME="$work" fish -c 'source completion.fish; complete -C "mesh-l2vpn show l2vpn_sync_st"'
  expect_text out "l2vpn_sync_stp"
else
  echo "not tried, fish is missing (Debian: fish)"
fi

# What template writes is what encode reads; show has every field of nested tables.
for each in $("$tool" list | sed 1d | cut -d' ' -f1); do
  "$tool" template "$each" >template.json
  expect_exit 0 "$tool" encode -m "$each" --compact template.json
done
expect_exit 0 "$tool" show $message
expect_text out "6     f1.f6  u16 "
expect_exit 0 "$tool" show l2vpn_cfg_query_dfx_rec
expect_text out "f1[].f0"
expect_exit 0 "$tool" schema --json-schema $message
expect_text out '"$ref": "#/$defs/l2vpn_sync_vpls_ac_update"'

# decode names the message that has exactly these bytes, and the file at fault.
expect_exit 0 "$tool" decode -m l2vpn_sync_stp compact.bin
expect_text err "compact.bin: fits better: "
expect_text err "$message"
expect_exit 0 "$tool" decode -m $message compact.bin
[ ! -s err ] || fail "a message that fits is said not to"
: >nothing.bin
expect_exit 1 "$tool" decode --binary nothing.bin
expect_text err "nothing.bin: byte 0: 0 bytes are too short for a table"

expect_exit 2 "$tool"
expect_exit 2 "$tool" nonsense
for command in help list show template schema compat decode encode explain diff send listen record replay stat dissector completion; do
  expect_exit 0 "$tool" $command --help
  expect_text out "Example"
done
