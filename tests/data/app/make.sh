#!/usr/bin/env bash
# Makes the certificates and PKCS#12 files beside this script with OpenSSL 3.0: *.der and *.p12, the password is abc123.
# The keys of 1024 and 2048 bits and of P-256 are those of tests/data/keys; nobody needs the other private keys. All ends
# before 2050, since of GeneralizedTime the library reads a form of its own.
set -euo pipefail
cd "$(dirname "$0")"
folder=$(mktemp -d)
trap 'rm -r "$folder"' EXIT

certificate() {
    openssl req -x509 -new -key "$folder/$1.key" -subj "/CN=$1" -days 7300 -out "$folder/$1.pem"
}
for name in rsa1024 rsa2048 p256; do
    openssl pkey -inform DER -in "../keys/$name.der" -out "$folder/$name.key"
    certificate "$name"
done
openssl genrsa -out "$folder/rsa4096.key" 4096
openssl ecparam -name secp521r1 -genkey -noout -out "$folder/p521.key"
for name in rsa4096 p521; do
    certificate "$name"
done
for name in rsa1024 rsa2048 rsa4096 p256 p521; do
    openssl x509 -in "$folder/$name.pem" -outform DER -out "$name.der"
done

pfx() {
    local key=$1 name=$2
    shift 2
    openssl pkcs12 -export "$@" -inkey "$folder/$key.key" -in "$folder/$key.pem" -passout pass:abc123 -out "$name.p12"
    chmod 644 "$name.p12"
}
pfx rsa1024 rsa1024 -legacy
pfx rsa2048 rsa2048 -legacy
pfx p256 p256 -legacy
pfx rsa1024 rsa1024_no_mac -legacy -nomac
pfx rsa1024 rsa1024_no_key -legacy -nokeys
pfx rsa1024 rsa1024_sha256
