#!/usr/bin/env bash
# Makes the revocation lists of this folder with openssl and certtool, under new keys.
set -euo pipefail
cd "$(dirname "$0")"
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

cat >"$folder/ca.cnf" <<END
[ca]
default_ca = this
[this]
database = $folder/index.txt
crlnumber = $folder/number
default_md = sha256
default_crl_days = 30
crl_extensions = extensions
unique_subject = no
[extensions]
authorityKeyIdentifier = keyid
issuingDistributionPoint = critical, @point
2.5.29.27 = critical, ASN1:INTEGER:0x81
[point]
fullname = URI:http://crl.example.org/all.crl
END
echo 0102 >"$folder/number"
printf 'R\t350101000000Z\t%s\t%s\tunknown\t/CN=revoked\n' \
    240301120000Z,keyCompromise 01A0 240302130001Z FF00FF 240303140002Z,superseded 03 >"$folder/index.txt"

openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:P-256 -nodes -days 3650 -keyout "$folder/key" \
    -out "$folder/certificate" -subj '/C=DE/O=Example/OU=One/OU=Two/CN=List CA' 2>/dev/null
openssl ca -gencrl -config "$folder/ca.cnf" -keyfile "$folder/key" -cert "$folder/certificate" \
    -crl_lastupdate 20240401000000Z -crl_nextupdate 20510501000000Z 2>/dev/null |
    openssl crl -outform der -out openssl.der

cat >"$folder/template" <<END
crl_this_update_date = "2024-04-01 00:00:00 UTC"
crl_next_update_date = "2024-05-01 00:00:00 UTC"
crl_revocation_date = "2024-03-05 10:11:12 UTC"
crl_number = 7
END
certtool --generate-crl --load-ca-privkey "$folder/key" --load-ca-certificate "$folder/certificate" \
    --load-certificate "$folder/certificate" --template "$folder/template" --outder --outfile certtool.der 2>/dev/null
