#!/usr/bin/env bash
# Makes the messages of this folder with openssl, for the keys of tests/data/keys. Made anew they differ in everything
# that is encrypted, and in the certificates' numbers.
set -euo pipefail
cd "$(dirname "$0")"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

for bits in 1024 2048; do
    openssl rsa -inform DER -in "../../keys/rsa$bits.der" -out "$folder/$bits.key" 2>/dev/null
    openssl req -x509 -new -key "$folder/$bits.key" -days 36500 -out "$folder/$bits.crt" \
        -subj "/C=DE/O=Example/CN=Recipient $bits/emailAddress=r@example.org"
done

# encrypt RESULT OPTION...: what is encrypted comes from the standard input.
encrypt() {
    local result=$1
    shift
    openssl cms -encrypt -binary -aes-128-cbc -outform DER -out "$result" "$@"
}
printf 'attack at dawn' | encrypt one.der "$folder/1024.crt"
printf '%s' "$(seq 1000)" | encrypt two.der "$folder/2048.crt" "$folder/1024.crt"
printf '%s' "$(seq 1000)" | encrypt streamed.ber -stream "$folder/2048.crt" "$folder/1024.crt"
printf 'attack at dawn' | encrypt keyid.der -keyid "$folder/1024.crt"
printf 'attack at dawn' | encrypt password.der -pwri_password secret
