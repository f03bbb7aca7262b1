#!/bin/bash
# Makes the certificates of this folder with openssl and certtool, and beside each its expected
# attributes with expect.py. Keys are new in every run; everything else stays.
set -eu
here=$(cd "$(dirname "$0")" && pwd)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"
export LC_ALL=C.UTF-8

begin() { # string mask, then lines of the name
    local mask=$1
    shift
    cat >ca.cnf <<EOF
[ca]
default_ca = authority
[authority]
database = $work/index.txt
serial = $work/serial
new_certs_dir = $work
policy = anything
unique_subject = no
preserve = yes
email_in_dn = yes
default_md = sha256
[anything]
[req]
distinguished_name = name
prompt = no
string_mask = $mask
utf8 = yes
[name]
$(printf '%s\n' "$@")
EOF
}

# File, serial, notBefore, notAfter, lines of extensions. `signer` is empty for a certificate that signs
# itself.
issue() {
    local name=$1 serial=$2 from=$3 to=$4
    shift 4
    : >index.txt
    echo "$serial" >serial
    openssl req -new -utf8 -key key.pem -config ca.cnf -out request.pem
    local extensions=()
    if [ $# -gt 0 ]; then
        printf '%s\n' '[extensions]' "$@" >>ca.cnf
        extensions=(-extensions extensions)
    fi
    openssl ca -batch -notext -preserveDN -config ca.cnf -in request.pem \
        ${signer:--selfsign -keyfile key.pem} \
        -startdate "$from" -enddate "$to" -md "${digest:-sha256}" "${extensions[@]}" \
        -out cert.pem 2>ca.log || { cat ca.log >&2; exit 1; }
    openssl x509 -in cert.pem -outform DER -out "$here/$name.der"
}

curve() {
    openssl genpkey -algorithm EC -pkeyopt "ec_paramgen_curve:$1" \
        -pkeyopt "ec_param_enc:$2" -out key.pem
}

first=20240102030405Z
last=20340102030405Z
openssl genrsa -out key.pem 1024 2>/dev/null

begin utf8only C=DE O=Root 0.OU=Roots 1.OU=Tests 'CN=Test Root'
issue root 01 $first $last 'subjectKeyIdentifier=hash' 'basicConstraints=critical,CA:TRUE'
cp cert.pem root.pem
cp key.pem root-key.pem
rm "$here/root.der"
signer="-cert root.pem -keyfile root-key.pem"
openssl genrsa -out key.pem 1024 2>/dev/null

begin utf8only C=CN ST=北京 L=Haidian O=Example 0.OU=Sales 1.OU=East 2.OU=Team CN=all.example \
    emailAddress=ca@example.cn postalCode=100080 telephoneNumber=555 postalAddress=Street
issue rsa_all 00C0FFEE01 $first $last \
    'basicConstraints=critical,CA:TRUE,pathlen:3' 'subjectKeyIdentifier=hash' \
    'authorityKeyIdentifier=keyid,issuer:always' \
    'keyUsage=critical,digitalSignature,keyCertSign,cRLSign' \
    'extendedKeyUsage=serverAuth,clientAuth,timeStamping' \
    'crlDistributionPoints=URI:http://a.example/1.crl,URI:http://b.example/2.crl' \
    'subjectAltName=@san' 'issuerAltName=dirName:dir' \
    '[san]' 'DNS.1=one.example' 'DNS.2=two.example' 'email=a@b.example' 'URI=https://x.example/' \
    'IP=192.0.2.7' 'dirName=dir' 'otherName=1.3.6.1.4.1.311.20.2.3;UTF8:upn' \
    '[dir]' 'C=DE' 'CN=Dir Name' 'emailAddress=dir@example.de'

begin nombstr C=CN O=Example 'CN=Version 1'
issue rsa_v1 7F $first $last

begin utf8only CN=purposes dnQualifier=q
issue rsa_purposes 02 20500101000000Z 20991231235959Z \
    'extendedKeyUsage=critical,codeSigning,emailProtection,OCSPSigning,1.3.6.1.4.1.311.10.3.4' \
    'basicConstraints=CA:TRUE' 'authorityKeyIdentifier=issuer:always' 'crlDistributionPoints=point' \
    '[point]' 'fullname=dirName:dir,URI:http://late.example/crl' 'CRLissuer=dirName:dir' \
    '[dir]' 'CN=issuer of lists'

signer=
begin MASK:0x0800 C=CN O=世界公司 'OU=唯一' CN=Alice
issue rsa_bmp 80 $first $last 'basicConstraints=CA:FALSE'

begin MASK:0x0004 C=DE 'O=T61 GmbH' CN=name
issue rsa_t61 0100 $first $last 'subjectKeyIdentifier=none' 'keyUsage=encipherOnly,decipherOnly' \
    'certificatePolicies=1.2.3.4,@cps' \
    'authorityInfoAccess=OCSP;URI:http://ocsp.example/,caIssuers;URI:http://ca.example/ca.cer' \
    '1.2.3.4.5=critical,DER:0C0378797A' \
    '[cps]' 'policyIdentifier=1.3.5.8' 'CPS.1=http://cps.example/'

begin utf8only C=CN CN=P-256
curve P-256 named_curve
issue ec_named 03 $first 20491231235959Z 'keyUsage=digitalSignature' 'subjectKeyIdentifier=hash'
curve P-256 explicit
begin utf8only C=CN CN=explicit
issue ec_explicit 04 $first 20500101000000Z 'subjectKeyIdentifier=hash'
curve P-384 named_curve
begin utf8only C=CN CN=P-384
digest=sha384 issue ec_p384 05 $first $last 'subjectAltName=DNS:p384.example'
openssl genpkey -algorithm SM2 -out key.pem
begin utf8only C=CN CN=SM2
digest=sm3 issue sm2 06 $first $last 'keyUsage=critical,nonRepudiation'

# certtool writes its extensions in an order and with defaults of its own.
certtool --generate-privkey --key-type ed25519 --outfile ed25519.pem 2>/dev/null
cat >template <<'EOF'
cn = "ed25519"
country = DE
serial = 9223372036854775806
activation_date = "2024-01-02 03:04:05 UTC"
expiration_date = "2034-01-02 03:04:05 UTC"
dns_name = "tls.example"
ip_address = "2001:db8::1"
tls_www_server
signing_key
EOF
certtool --generate-self-signed --load-privkey ed25519.pem --template template --outder \
    --outfile "$here/ed25519.der" 2>/dev/null

for certificate in "$here"/*.der; do
    python3 -B "$here/expect.py" "$certificate" >"${certificate%.der}.expect"
done
