#!/usr/bin/env bash
# What somebody who knows the shell would bind to a key instead: the clipboard's text kept, the selection copied, one
# request made, the answer pasted, the text put back. It takes the model's address from BENCH_URL.
set -u -o pipefail

folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

# The hand must be off the hotkey first: keys sent while it lets go of them reach the application half.
sleep 0.25
xclip -selection clipboard -o >"$folder/before" 2>/dev/null
xdotool key --clearmodifiers ctrl+c
sleep 0.15
xclip -selection clipboard -o |
  jq -Rsc '{model: "bench", temperature: 0.7, messages: [{role: "system", content: "p"}, {role: "user", content: .}]}' |
  curl -fsS --max-time 30 -H 'Content-Type: application/json' --data-binary @- "$BENCH_URL" |
  jq -rj '.choices[0].message.content' >"$folder/answer" || exit 1
xclip -selection clipboard -i "$folder/answer"
xdotool key --clearmodifiers ctrl+v
sleep 0.15
xclip -selection clipboard -i "$folder/before"
