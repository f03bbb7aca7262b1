#!/usr/bin/env python3
"""Prints what the attributes of a certificate are, by what openssl finds where in its octets.

A line is "ID=HEX" or "NAME=VALUE"; "point" gives x and y of a key of 256 bits, whose attribute 54 has
a form of its own. What is not printed is empty.
"""
import datetime
import re
import subprocess
import sys

KINDS = {  # in the order of a name's text: the key there, and the attribute of the issuer
    "countryName": ("C", 9), "organizationName": ("O", 12), "organizationalUnitName": ("OU", 13),
    "commonName": ("CN", 14), "emailAddress": ("E", 15), "stateOrProvinceName": ("S", 10),
    "localityName": ("L", 11), "postalAddress": ("PA", 16), "postalCode": ("PC", 17),
    "telephoneNumber": ("Phone", 18), "dnQualifier": ("OID.2.5.4.46", None)}
PURPOSES = ["TLS Web Server Authentication", "TLS Web Client Authentication", "Code Signing",
            "E-mail Protection", "IPSec End System", "IPSec Tunnel", "IPSec User", "Time Stamping"]


class Node:
    def __init__(self, der, header, tag, text):
        self.whole, self.content, self.tag, self.text, self.children = der, der[header:], tag, text, []

    def __getitem__(self, index):
        return self.children[index]

    def find(self, tag, missing=b""):
        """The content of the first child with a tag."""
        return next((child.content for child in self.children if child.tag == tag), missing)


def parse(der):
    listing = subprocess.run(["openssl", "asn1parse", "-inform", "DER"], input=der, check=True,
                             capture_output=True).stdout.decode()
    line = r"(?m)^ *(\d+):d=(\d+) +hl=(\d+) +l= *(\d+) \w+: (.*?) *(?::(.*))?$"
    path = []
    for match in re.finditer(line, listing):
        at, depth, header, length = map(int, match.groups()[:4])
        path[depth:] = [Node(der[at:at + header + length], header, match[5], match[6])]
        if depth:
            path[depth - 1].children.append(path[depth])
    return path[0]


def entries(name):
    for rdn in name:
        for kind, value in rdn:
            is_bmp = value.tag == "BMPSTRING"
            yield kind.text, (value.content.decode("utf-16-be").encode("gb18030") if is_bmp
                              else value.content)


def char(identifier, octets):
    if identifier and octets:
        print(f"{identifier}={octets.hex().upper()}")


def show_name(name, der, text, offset):
    char(der, name.whole)
    parts = []
    for kind, (key, identifier) in KINDS.items():
        values = [value for entry, value in entries(name) if entry == kind]
        parts += [key.encode() + b"=" + value for value in values]
        joined = b",OU=".join(values) if key == "OU" else b"".join(values[:1])
        char(identifier and identifier + offset, joined)
    char(text, b",".join(parts))


def show_time(name, time):
    century = "20" if time.text < "70" else "19"
    moment = datetime.datetime.strptime(century + time.text[-13:] + "+0000", "%Y%m%d%H%M%SZ%z")
    print(f"{name}={int(moment.timestamp()) if time.tag == 'UTCTIME' else 0}")


def show_key(info):
    algorithm, bits = info[0], info[1].content[1:]
    char(53, algorithm[0].content)
    if len(algorithm.children) > 1 and algorithm[1].tag != "NULL":
        char(3003, algorithm[1].content if algorithm[1].tag == "OBJECT" else algorithm[1].whole)
    char(*("point", bits[1:]) if len(bits) == 65 and bits[0] == 4 else (54, bits))


def purposes(found):
    mask = sum(0x40 << PURPOSES.index(oid.text) for oid in found if oid.text in PURPOSES)
    return mask.to_bytes(4, "little")


def directory(names, common_name, email):
    found = names.find("cont [ 4 ]")
    identifiers = {"commonName": common_name, "emailAddress": email}
    return [(identifiers.get(kind), value) for kind, value in entries(parse(found))] if found else []


EXTENSIONS = {  # the value's element and the criticality to attributes
    "Basic Constraints": lambda found, critical: [
        (119, critical), (120, found.find("BOOLEAN", b"\0")), (121, found.find("INTEGER"))],
    "Authority Key Identifier": lambda found, _: [(65, found.find("cont [ 0 ]"))],
    "Subject Key Identifier": lambda found, _: [(85, found.content)],
    "Key Usage": lambda found, critical: [(86, critical), (87, found.content[1:])],
    "Extended Key Usage": lambda found, _: [(129, purposes(found))],
    "CRL Distribution Points": lambda found, _: [
        (131, parse(found[0].find("cont [ 0 ]")).find("cont [ 6 ]"))],
    "Subject Alternative Name": lambda found, _: [
        (504, found.find("cont [ 1 ]")), (505, found.find("cont [ 2 ]")),
        (509, found.find("cont [ 6 ]")), (510, found.find("cont [ 7 ]")),
        *directory(found, 106, 107)],
    "Issuer Alternative Name": lambda found, _: directory(found, 114, 115)}

with open(sys.argv[1], "rb") as file:
    tbs, algorithm, signature = parse(file.read())
char(1, tbs.whole)
char(2, algorithm[0].content)
char(3, signature.content[1:])
fields = tbs.children
print(f"version={fields.pop(0)[0].content[0] if fields[0].tag == 'cont [ 0 ]' else 0}")
serial, inner, issuer, validity, subject, key = fields[:6]
char(5, serial.content[1:] if serial.content[0] == 0 else serial.content)
char(6, inner[0].content)
show_name(issuer, 7, 8, 0)
show_time("from", validity[0])
show_time("to", validity[1])
show_name(subject, 31, 32, 24)  # from those of the issuer
show_key(key)
others = ""
for extension in fields[6][0].children if len(fields) > 6 else []:
    critical, octets = extension.find("BOOLEAN", b"\0"), extension[-1].content
    decode = EXTENSIONS.get((extension[0].text or "").removeprefix("X509v3 "))
    for identifier, value in decode(parse(octets), critical) if decode else []:
        char(identifier, value)
    if not decode:
        others += f"{extension[0].content.hex()} {critical[0]} {octets.hex()};".upper()
print("private=" + others)
