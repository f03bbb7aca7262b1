#!/usr/bin/env bash
# Makes a SoftHSM token in FOLDER, and an empty one beside it. The configuration is FOLDER/conf, the PIN FOLDER/pin, and
# FOLDER/module stands for MODULE. The token's keys:
#   01 "rsa", A2 "ec" (P-384), 03 "ec" (P-256)  those of tests/data/keys
#   09 "asks"                                   P-256, asks for the PIN at each signature
#   0A "alone", 0B "certified"                  P-256 without a public key; 0B has a certificate (of another key)
# Usage: make-token.sh FOLDER MODULE
set -euo pipefail
folder=$1
data=$(cd "$(dirname "$0")/.." && pwd)
export SOFTHSM2_CONF=$folder/conf

mkdir "$folder/tokens"
echo "directories.tokendir = $folder/tokens" >"$SOFTHSM2_CONF"
echo 1234 >"$folder/pin"
ln -s "$2" "$folder/module"
softhsm2-util --init-token --free --label 'a token' --pin 1234 --so-pin 5678
softhsm2-util --init-token --free --label 'an empty token' --pin 1234 --so-pin 5678

import() {
    openssl pkey -inform DER -in "$data/keys/$1.der" -out "$folder/key.pem"
    softhsm2-util --import "$folder/key.pem" --token 'a token' --pin 1234 --label "$2" --id "$3"
}
import rsa2048 rsa 01
import p384 ec A2
import p256 ec 03
import p256 alone 0A
import p256 certified 0B

tool() {
    pkcs11-tool --module "$folder/module" --token-label 'a token' --login --pin 1234 "$@"
}
tool --keypairgen --key-type EC:prime256v1 --label asks --id 09 --always-auth
tool --delete-object --type pubkey --id 0A
tool --delete-object --type pubkey --id 0B
tool --write-object "$data/certs/ec_named.der" --type cert --label certified --id 0B
