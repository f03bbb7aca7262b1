#!/usr/bin/env bash
# Makes the files of this folder under the password abc123, with the keys of ../keys: "theirs.txt"
# tells what is to be read in them. certtool, keytool, pk12util and python3-cryptography write too.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

certificate() { # key, name, further options
    openssl req -x509 -key "$1.key" -out "$2.pem" -subj "/CN=$2" -days 36500 "${@:3}" 2>/dev/null
}
for key in rsa1024 rsa2048 p256; do
    openssl pkey -inform DER -in "$here/../keys/$key.der" -out "$key.key"
    certificate "$key" "$key"
done
certificate rsa1024 second -set_serial 2
certificate rsa1024 third -set_serial 3
cat second.pem third.pem >more.pem

password=(-passout pass:abc123)
with_openssl() { # file, options
    openssl pkcs12 -export -out "$here/$1.p12" "${password[@]}" -inkey rsa1024.key -in rsa1024.pem -name One "${@:2}"
}
triple=(-keypbe PBE-SHA1-3DES -certpbe PBE-SHA1-3DES)
with_openssl openssl_legacy -legacy
with_openssl openssl_3des_sha1 "${triple[@]}" -macalg sha1
with_openssl openssl_3des_sha1_once "${triple[@]}" -macalg sha1 -noiter -nomaciter
with_openssl openssl_3des_sha256 "${triple[@]}"
with_openssl openssl_default
with_openssl openssl_pbes2_sha1 -macalg sha1
with_openssl openssl_rc4 -legacy -keypbe PBE-SHA1-RC4-128 -certpbe PBE-SHA1-RC4-128
with_openssl openssl_key_md5_des -legacy -keypbe PBE-MD5-DES
with_openssl openssl_mac_md5 -legacy -macalg md5
with_openssl openssl_no_mac -legacy -nomac
with_openssl openssl_no_key -legacy -nokeys
with_openssl openssl_no_certificate -legacy -nocerts
with_openssl openssl_plain_certificate -legacy -certpbe NONE
with_openssl openssl_plain_key -legacy -keypbe NONE
with_openssl openssl_three -legacy -certfile more.pem -caname Two -caname Three
with_openssl openssl_attributes -legacy -keysig -CSP Provider
with_openssl openssl_rsa2048 -legacy -inkey rsa2048.key -in rsa2048.pem
with_openssl openssl_p256 -legacy -inkey p256.key -in p256.pem
openssl pkcs8 -topk8 -v1 PBE-SHA1-3DES "${password[@]}" -in rsa1024.key -outform DER -out "$here/openssl_pkcs8.der"

with_certtool() { # file, options
    certtool --to-p12 --load-privkey rsa1024.key --load-certificate rsa1024.pem --p12-name One --password abc123 \
        --outder --outfile "$here/$1.p12" "${@:2}" 2>/dev/null
}
with_certtool certtool_3des_sha1 --pkcs-cipher 3des-pkcs12 --hash sha1
with_certtool certtool_rc2_sha1 --pkcs-cipher rc2-40 --hash sha1
with_certtool certtool_3des_sha256 --pkcs-cipher 3des-pkcs12
with_certtool certtool_default

# keytool makes keys of its own, of 607 to 610 octets.
with_keytool() { # file, options
    rm -f "$here/$1.p12"
    keytool "${@:2}" -genkeypair -alias One -dname CN=One -keyalg RSA -keysize 1024 -validity 36500 -storetype PKCS12 \
        -keystore "$here/$1.p12" -storepass abc123 2>/dev/null
}
key_length() {
    openssl pkcs12 -legacy -in "$1" -passin pass:abc123 -nodes -nocerts | openssl rsa -traditional -outform DER | wc -c
}
with_keytool keytool_default
until with_keytool keytool_legacy -J-Dkeystore.pkcs12.legacy && [ "$(key_length "$here/keytool_legacy.p12")" = 609 ]; do
    :
done 2>/dev/null

mkdir nss
certutil -N -d sql:nss --empty-password
pk12util -i "$here/openssl_3des_sha1.p12" -d sql:nss -W abc123 >/dev/null
cipher="PKCS #12 V2 PBE With SHA-1 And 3KEY Triple DES-CBC"
pk12util -o "$here/pk12util_default.p12" -n One -d sql:nss -W abc123 >/dev/null
pk12util -o "$here/pk12util_3des_sha1.p12" -n One -d sql:nss -W abc123 -c "$cipher" -C "$cipher" -M SHA-1 >/dev/null

python3 - "$here" <<END
import pathlib
import sys
from cryptography import x509
from cryptography.hazmat.primitives import hashes
from cryptography.hazmat.primitives.serialization import (BestAvailableEncryption, PrivateFormat, load_pem_private_key,
                                                          pkcs12)

key = load_pem_private_key(open("rsa1024.key", "rb").read(), None)
certificate = x509.load_pem_x509_certificate(open("rsa1024.pem", "rb").read())
old = (PrivateFormat.PKCS12.encryption_builder().kdf_rounds(2048)
       .key_cert_algorithm(pkcs12.PBES.PBESv1SHA1And3KeyTripleDESCBC).hmac_hash(hashes.SHA1()).build(b"abc123"))
for name, how in ("3des_sha1", old), ("best", BestAvailableEncryption(b"abc123")):
    pathlib.Path(sys.argv[1], f"cryptography_{name}.p12").write_bytes(
        pkcs12.serialize_key_and_certificates(b"One", key, certificate, None, how))
END
