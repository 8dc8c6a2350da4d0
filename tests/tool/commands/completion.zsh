#!/usr/bin/env zsh
# Completes words with Tab in an interactive zsh on a pseudo terminal.
#
#   completion.zsh MESH-L2VPN
emulate -L zsh
setopt err_exit
zmodload zsh/zpty

work=$(mktemp -d)
trap 'zpty -d shell 2>/dev/null; rm -rf $work' EXIT

fail() {
  print -u2 "FAILED: $*"
  exit 1
}

$1 completion zsh >$work/completion
zsh -n $work/completion || fail "the completion script is not valid zsh"

if [[ ! -e /dev/pts/ptmx ]]; then
  print "skipped: this machine has no pseudo terminals"
  exit 77
fi
zpty shell "cd $work; HOME=$work TERM=dumb zsh -f -i"

# await PATTERN: reads what the shell prints up to the pattern.
await() {
  local said= part
  repeat 100; do
    if zpty -r -t shell part; then
      said+=$part
      [[ $said != ${~1} ]] || { REPLY=$said; return 0 }
    else
      sleep 0.05
    fi
  done
  fail "no $1 in: ${(V)said}"
}

zpty -w shell 'PS1=; autoload -Uz compinit && compinit -u -D && . ./completion; print re''ady'
await '*ready*'

# completes LINE EXPECTED: presses Tab after the line, then discards the line.
completes() {
  zpty -n -w shell $1$'\t'
  await "*$2*"
  zpty -n -w shell $'\x15'
}

completes 'mesh-l2vpn exp' 'mesh-l2vpn explain'
completes 'mesh-l2vpn compl' 'mesh-l2vpn completion'
completes 'mesh-l2vpn completion z' 'completion zsh'
completes 'mesh-l2vpn show l2vpn_sync_vpls_macping_u' 'l2vpn_sync_vpls_macping_update'
completes 'mesh-l2vpn decode -m l2vpn_sync_vpls_ac_macdraw_d' 'l2vpn_sync_vpls_ac_macdraw_delete'
completes 'mesh-l2vpn decode --capt' '--capture'
completes 'mesh-l2vpn --qui' '--quiet'
completes 'mesh-l2vpn --color always expl' 'always explain'
completes 'mesh-l2vpn decode --message=l2vpn_sync_vpls_macping_u' 'message=l2vpn_sync_vpls_macping_update'
zpty -d shell

# Installed, the script is a function that zsh loads at the first Tab.
mkdir $work/functions
cp $work/completion $work/functions/_mesh-l2vpn
zpty shell "cd $work; HOME=$work TERM=dumb zsh -f -i"
zpty -w shell 'PS1=; fpath=(./functions $fpath); autoload -Uz compinit && compinit -u -D; print re''ady'
await '*ready*'
completes 'mesh-l2vpn exp' 'mesh-l2vpn explain'
completes 'mesh-l2vpn compl' 'mesh-l2vpn completion'
print "11 lines are completed"
