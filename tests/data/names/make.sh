#!/bin/bash
# Makes the files of this folder with the openssl command.
set -eu
cd "$(dirname "$0")"
request() {
    NAME=$1 MASK=$2 openssl req -new -config names.cnf -newkey rsa:2048 -nodes -keyout /dev/null -outform DER "${@:3}"
}
# The subject stands behind two headers of four octets and the version.
subject() {
    request "$1" "$2" | openssl asn1parse -inform DER -noout -strparse 11 -out "$3.der"
}
subject utf8 utf8only utf8
subject utf8 pkix utf8_as_bmp
subject multivalued utf8only multivalued
subject bmp pkix bmp
for forms in many_forms few_forms; do
    request utf8 utf8only -reqexts "$forms" -out request.tmp
    at=$(openssl asn1parse -inform DER -in request.tmp | grep -A1 'X509v3 Subject Alternative Name' | sed -n '2s/:.*//p')
    openssl asn1parse -inform DER -in request.tmp -noout -strparse "$at" -out "$forms.der"
done
rm request.tmp
