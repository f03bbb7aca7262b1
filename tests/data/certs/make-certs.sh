#!/bin/bash
# Makes the certificates of this folder with openssl (certs.list, certs.cnf) and certtool, and beside
# each its attributes with expect.py. Keys are new in every run; everything else stays.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
export LC_ALL=C.UTF-8

while read -r name serial start end signer digest algorithm; do
    : >index.txt
    echo "$serial" >serial
    # shellcheck disable=SC2086
    openssl genpkey -algorithm ${algorithm// / -pkeyopt } -out "$name.key" 2>/dev/null
    openssl req -new -utf8 -config "$here/certs.cnf" -section "$name" -key "$name.key" -out request.pem
    extensions=(-extensions "${name}_ext")
    grep -q "^\[${name}_ext\]" "$here/certs.cnf" || extensions=()
    authority=(-cert root.pem -keyfile root.key)
    [ "$signer" = root ] || authority=(-selfsign -keyfile "$name.key")
    openssl ca -batch -notext -preserveDN -config "$here/certs.cnf" -name authority -in request.pem \
        "${authority[@]}" "${extensions[@]}" -startdate "$start" -enddate "$end" \
        -md "$digest" -out "$name.pem" 2>ca.log || { cat ca.log >&2; exit 1; }
    openssl x509 -in "$name.pem" -outform DER -out "$here/$name.der"
done < <(grep -v "^#" "$here/certs.list")
rm "$here/root.der"

# certtool writes its extensions in an order and with defaults of its own.
certtool --generate-privkey --key-type ed25519 --outfile ed25519.pem 2>/dev/null
certtool --generate-self-signed --load-privkey ed25519.pem --template "$here/ed25519.template" \
    --outder --outfile "$here/ed25519.der" 2>/dev/null

for certificate in "$here"/*.der; do
    python3 -B "$here/expect.py" "$certificate" >"${certificate%.der}.expect"
done
