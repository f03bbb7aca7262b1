#!/usr/bin/env python3
"""Prints what the attributes of a certificate are, by what openssl finds where in its octets.

A line is "char ID HEX", "int ID NUMBER" or "private INDEX OID CRITICAL HEX"; "point" gives x and y of
a key of 256 bits whose attribute 54 has a form of its own. What is not printed is empty.
"""
import datetime
import re
import subprocess
import sys

KINDS = {  # attribute of the issuer; the subject's is 24 more
    "countryName": 9, "stateOrProvinceName": 10, "localityName": 11, "organizationName": 12,
    "organizationalUnitName": 13, "commonName": 14, "emailAddress": 15, "postalAddress": 16,
    "postalCode": 17, "telephoneNumber": 18}
TEXT_KEYS = [("C", 9), ("O", 12), ("OU", 13), ("CN", 14), ("E", 15), ("S", 10), ("L", 11),
             ("PA", 16), ("PC", 17), ("Phone", 18)]
KNOWN = {"Basic Constraints", "Authority Key Identifier", "Subject Key Identifier", "Key Usage",
         "Extended Key Usage", "CRL Distribution Points", "Subject Alternative Name",
         "Issuer Alternative Name"}
PURPOSES = ["TLS Web Server Authentication", "TLS Web Client Authentication", "Code Signing",
            "E-mail Protection", "IPSec End System", "IPSec Tunnel", "IPSec User", "Time Stamping"]


class Node:
    def __init__(self, whole, header, tag, text):
        self.whole, self.content, self.tag, self.text = whole, whole[header:], tag, text
        self.children = []

    def __getitem__(self, index):
        return self.children[index]

    def find(self, tag):
        return next((child for child in self.children if child.tag == tag), None)


def parse(der):
    listing = subprocess.run(["openssl", "asn1parse", "-inform", "DER"], input=der, check=True,
                             capture_output=True).stdout.decode()
    line = re.compile(r"\s*(\d+):d=(\d+)\s+hl=(\d+)\s+l=\s*(\d+) (?:prim|cons): (.*?)\s*(?::(.*))?$")
    path = []
    for match in map(line.match, listing.splitlines()):
        at, depth, header, length = map(int, match.groups()[:4])
        node = Node(der[at:at + header + length], header, match[5], match[6])
        del path[depth:]
        if path:
            path[-1].children.append(node)
        path.append(node)
    return path[0]


def magnitude(integer):
    return integer.content[1:] if len(integer.content) > 1 and integer.content[0] == 0 \
        else integer.content


def value_of(string):
    if string.tag == "BMPSTRING":
        return string.content.decode("utf-16-be").encode("gb18030")
    return string.content


def entries(name):
    return [(attribute[0].text, attribute[0].content, value_of(attribute[1]))
            for rdn in name.children for attribute in rdn.children]


def dotted(oid):
    arcs, number = [], 0
    for octet in oid:
        number = number << 7 | octet & 0x7F
        if octet < 0x80:
            arcs.append(number)
            number = 0
    first = min(arcs[0] // 40, 2)
    return ".".join(map(str, [first, arcs[0] - 40 * first, *arcs[1:]]))


def char(identifier, octets):
    if octets:
        print("char", identifier, octets.hex().upper())


def show_name(name, der, first, text):
    found = entries(name)
    char(der, name.whole)
    parts = [key.encode() + b"=" + value for key, identifier in TEXT_KEYS
             for kind, _, value in found if KINDS.get(kind) == identifier]
    parts += [b"OID." + dotted(oid).encode() + b"=" + value
              for kind, oid, value in found if kind not in KINDS]
    char(text, b",".join(parts))
    for kind, identifier in KINDS.items():
        values = [value for entry, _, value in found if entry == kind]
        joined = b",OU=".join(values) if kind == "organizationalUnitName" else b"".join(values[:1])
        char(first + identifier - 9, joined)


def show_time(identifier, time):
    seconds = 0
    if time.tag == "UTCTIME":
        century = "20" if time.text < "70" else "19"
        moment = datetime.datetime.strptime(century + time.text, "%Y%m%d%H%M%SZ")
        seconds = int(moment.replace(tzinfo=datetime.timezone.utc).timestamp())
    print("int", identifier, seconds)


def show_key(info):
    algorithm, bits = info[0], info[1].content[1:]
    char(53, algorithm[0].content)
    if len(algorithm.children) > 1 and algorithm[1].tag != "NULL":
        char(3003, algorithm[1].content if algorithm[1].tag == "OBJECT" else algorithm[1].whole)
    if len(bits) == 65 and bits[0] == 4:
        print("point", bits[1:].hex().upper())
    else:
        char(54, bits)


def show_directory(names, common_name, email):
    directory = names.find("cont [ 4 ]")
    for kind, _, value in entries(directory[0]) if directory else []:
        if kind in ("commonName", "emailAddress"):
            char(common_name if kind == "commonName" else email, value)


def show_extension(name, critical, value):
    found = parse(value)
    if name == "Basic Constraints":
        flag, length = found.find("BOOLEAN"), found.find("INTEGER")
        char(119, critical)
        char(120, flag.content if flag else b"\0")
        char(121, length.content if length else b"")
    elif name == "Authority Key Identifier":
        identifier = found.find("cont [ 0 ]")
        char(65, identifier.content if identifier else b"")
    elif name == "Subject Key Identifier":
        char(85, found.content)
    elif name == "Key Usage":
        char(86, critical)
        char(87, found.content[1:])
    elif name == "Extended Key Usage":
        mask = sum(0x40 << PURPOSES.index(purpose.text) for purpose in found.children
                   if purpose.text in PURPOSES)
        char(129, mask.to_bytes(4, "little"))
    elif name == "CRL Distribution Points":
        uris = [uri.content for point in found.children if point.find("cont [ 0 ]")
                for uri in point.find("cont [ 0 ]")[0].children if uri.tag == "cont [ 6 ]"]
        char(131, uris[0])
    elif name == "Subject Alternative Name":
        for number, identifier in ((1, 504), (2, 505), (6, 509), (7, 510)):
            form = found.find(f"cont [ {number} ]")
            char(identifier, form.content if form else b"")
        show_directory(found, 106, 107)
    else:
        show_directory(found, 114, 115)


def show_extensions(extensions):
    index = 0
    for extension in extensions.children:
        name = (extension[0].text or "").removeprefix("X509v3 ")
        critical = extension[1].content if extension[1].tag == "BOOLEAN" else b"\0"
        value = extension.children[-1].content
        if name in KNOWN:
            show_extension(name, critical, value)
        else:
            index += 1
            print("private", index, extension[0].content.hex().upper(), critical[0],
                  value.hex().upper())


def main():
    with open(sys.argv[1], "rb") as file:
        tbs, algorithm, signature = parse(file.read()).children
    char(1, tbs.whole)
    char(2, algorithm[0].content)
    char(3, signature.content[1:])
    fields = tbs.children
    version = 0
    if fields[0].tag == "cont [ 0 ]":
        version = fields.pop(0)[0].content[0]
    serial, inner, issuer, validity, subject, key = fields[:6]
    print("int 4", version)
    char(5, magnitude(serial))
    char(6, inner[0].content)
    show_name(issuer, 7, 9, 8)
    show_time(29, validity[0])
    show_time(30, validity[1])
    show_name(subject, 31, 33, 32)
    show_key(key)
    if len(fields) > 6:
        show_extensions(fields[6][0])


main()
