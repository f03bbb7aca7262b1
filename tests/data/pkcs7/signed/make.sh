#!/usr/bin/env bash
# Makes the messages of this folder anew. They differ in their octets then, but not in what the tests
# expect of them.
set -euo pipefail
cd "$(dirname "$0")"
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

for name in rsa2048 rsa1024; do
    openssl rsa -inform DER -in "../../keys/$name.der" -out "$work/$name.pem" 2>/dev/null
    openssl req -x509 -new -key "$work/$name.pem" -subj "/CN=$name" -days 3650 -out "$work/$name.crt"
done
printf 'signed by others' > "$work/short"
head -c 9000 /dev/zero | tr '\0' Z > "$work/long"

sign() { # command, content, output, options
    local command=$1 content=$2 out=$3
    shift 3
    openssl "$command" -sign -binary -in "$work/$content" -outform DER -out "$out" "$@"
}
one=(-signer "$work/rsa1024.crt" -inkey "$work/rsa1024.pem")
two=(-signer "$work/rsa2048.crt" -inkey "$work/rsa2048.pem")
sign cms short attributes.der -nodetach "${one[@]}"
sign cms short plain.der -nodetach -noattr -nocerts "${one[@]}"
sign cms short detached.der -nocerts "${one[@]}"
sign cms short detached_plain.der -noattr -nocerts "${one[@]}"
sign cms short two.der -nodetach "${one[@]}" "${two[@]}"
sign cms long streamed.ber -nodetach -stream -nocerts "${one[@]}"
sign cms short keyid.der -nodetach -noattr -nocerts -keyid "${one[@]}"
sign smime short smime.der -nodetach -nocerts "${one[@]}"
openssl crl2pkcs7 -inform DER -in ../../crls/openssl.der -certfile "$work/rsa2048.crt" \
    -certfile "$work/rsa1024.crt" -outform DER -out certificates.der
