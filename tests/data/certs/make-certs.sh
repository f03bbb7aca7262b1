#!/bin/bash
# Makes the certificates of this folder with openssl (certs.cnf) and certtool, and beside each its
# attributes with expect.py. Keys are new in every run; everything else stays.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
export LC_ALL=C.UTF-8

# Options of -pkeyopt follow the algorithm.
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
done <<'END'
root         01         20240102030405Z 20340102030405Z self sha256 RSA rsa_keygen_bits:1024
rsa_all      00C0FFEE01 20240102030405Z 20340102030405Z root sha256 RSA rsa_keygen_bits:1024
rsa_v1       7F         20240102030405Z 20340102030405Z root sha256 RSA rsa_keygen_bits:1024
rsa_purposes 02         20500101000000Z 20991231235959Z root sha256 RSA rsa_keygen_bits:1024
rsa_bmp      80         20240102030405Z 20340102030405Z self sha256 RSA rsa_keygen_bits:1024
rsa_t61      0100       20240102030405Z 20340102030405Z self sha256 RSA rsa_keygen_bits:1024
ec_named     03         20240102030405Z 20491231235959Z self sha256 EC ec_paramgen_curve:P-256 ec_param_enc:named_curve
ec_explicit  04         20240102030405Z 20500101000000Z self sha256 EC ec_paramgen_curve:P-256 ec_param_enc:explicit
ec_p384      05         20240102030405Z 20340102030405Z self sha384 EC ec_paramgen_curve:P-384 ec_param_enc:named_curve
sm2          06         20240102030405Z 20340102030405Z self sm3    SM2
END
rm "$here/root.der"

# certtool writes its extensions in an order and with defaults of its own.
certtool --generate-privkey --key-type ed25519 --outfile ed25519.pem 2>/dev/null
certtool --generate-self-signed --load-privkey ed25519.pem --template "$here/ed25519.template" \
    --outder --outfile "$here/ed25519.der" 2>/dev/null

for certificate in "$here"/*.der; do
    python3 -B "$here/expect.py" "$certificate" >"${certificate%.der}.expect"
done
