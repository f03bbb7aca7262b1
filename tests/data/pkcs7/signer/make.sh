#!/usr/bin/env bash
# Makes the SignerInfos that openssl writes, by the key of tests/data/keys/rsa1024.der. Made anew they differ in their
# signing time, which stands in a row of decode.txt, and in their signatures.
set -euo pipefail
cd "$(dirname "$0")"
work=$(mktemp -d)
trap 'rm -r "$work"' EXIT
openssl pkey -inform DER -in ../../keys/rsa1024.der -out "$work/key.pem"
openssl req -x509 -key "$work/key.pem" -subj '/C=DE/O=Example/CN=Signer' -set_serial 77 -days 36500 -out "$work/cert.pem"
printf 'signed by openssl' >"$work/content"

# signer FILE COMMAND OPTION...: the one element of signerInfos, which stands last in signedData
signer() {
    local file=$1 command=$2
    shift 2
    openssl "$command" -sign -binary -nodetach -signer "$work/cert.pem" -inkey "$work/key.pem" -in "$work/content" \
        -outform DER -out "$work/message" "$@"
    local at
    at=$(openssl asn1parse -inform DER -in "$work/message" | awk -F: '/^ *[0-9]+:d=4 .*SEQUENCE/ { at = $1 } END { print at + 0 }')
    openssl asn1parse -inform DER -in "$work/message" -strparse "$at" -noout -out "$file"
}

signer cms_attributes.der cms -nosmimecap -md sha256
signer cms_plain.der cms -noattr -md sha256
signer smime_attributes.der smime -nosmimecap -md sha1
signer cms_keyid.der cms -keyid -noattr -md sha256
