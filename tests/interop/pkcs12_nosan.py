#!/usr/bin/env python3
"""PKCS#12 files of the library before five other programs: who takes them, and who does not."""
import concurrent.futures
import os
import re
import shutil
import sys

from cryptography.hazmat.primitives import serialization
from cryptography.hazmat.primitives.serialization import Encoding, PrivateFormat, pkcs12 as theirs

from support import pkcs12
from support.messages import EC, inside
from support.peers import FOLDER, Identity, attempt, file, octets_of, run, told

CHINESE, GBK = "张三的证书", "密码".encode("gbk")
OLD, NEW, CERTTOOL, LIST, IMPORT, LOAD, SHOW, TAKE = ALL = (
    "openssl -legacy", "openssl", "certtool", "keytool -list", "keytool -importkeystore", "cryptography",
    "pk12util -l", "pk12util -i")
FIRST = {OLD, CERTTOOL, LOAD}
small, usual, large = Identity("Small", option="rsa:1024"), Identity("Usual"), Identity("Large", option="rsa:3072")
curve, *others = (Identity(name, option=EC) for name in ("Curve", "Two", "Three", "Four", "Five"))
FIVE = [usual, *others]
NAMES = [pkcs12.friendly_name(CHINESE), pkcs12.local_key_id(b"\1\2")]
USAGE = (pkcs12.KEY_USAGE, b"\x31\x04\x03\x02\x07\x80")


def attributes(names):
    return {"of_key": [USAGE], "of_bag": names, "of_certificates": [(*one, 1) for one in names]}


# A file; who refuses it, of those asked. Openssl needs -legacy for RC2. pk12util takes a key that has a name and an
# identifier, like its certificate, even an elliptic one, but cannot use that.
ROWS = [
    ("RSA 1024", small, [small], {}, {NEW, TAKE}, ALL),
    ("RSA 2048", usual, [usual], {}, {NEW, TAKE}, ALL),
    ("RSA 3072, the type given", large, [large], {"kind": 0}, {NEW}, {*FIRST, NEW, LIST}),
    ("no certificate", usual, [], {}, {NEW, IMPORT, TAKE}, ALL),
    ("attributes", usual, [usual], attributes(NAMES), {NEW}, ALL),
    ("attributes without SET", usual, [usual], attributes([(kind, value[2:]) for kind, value in NAMES]), set(ALL), ALL),
    ("EC", curve, [curve], {}, {OLD, NEW, IMPORT, LOAD, TAKE}, ALL),
    ("EC, attributes", curve, [curve], attributes(NAMES), {OLD, NEW, IMPORT, LOAD, TAKE}, ALL),
    ("empty password", usual, [usual], {"password": b""}, set(), {*FIRST, SHOW}),
    ("password in GBK", usual, [usual], {"password": GBK}, {CERTTOOL, SHOW}, {OLD, CERTTOOL, SHOW}),
    *((f"{count} certificates", usual, FIVE[:count], {}, set(), FIRST) for count in range(2, 6)),
]
differences = []


def differ(label, found, expected):
    if found != expected:
        differences.append(f"{label}: {found}, expected {expected}")


def writer(identity, certificates, **of_what):
    key = identity.key.private_bytes(Encoding.DER, PrivateFormat.TraditionalOpenSSL, serialization.NoEncryption())
    return pkcs12.writer(key, [one.der for one in certificates], **of_what)


def by_openssl(path, password, option="-legacy"):
    good, said = attempt(f"openssl pkcs12 {option} -in {path} -nodes -passin 'pass:{password}'")
    return told(said) if good else None


def by_certtool(path, password):
    """It shows keys as they are; what stands in them it says of its own output."""
    given = f"--password '{password}'" if password else "--empty-password"
    good, said = attempt(f"certtool --p12-info --inder --infile {path} {given}")
    key = attempt(f"certtool --key-info --infile {file(path + '.info', said)} {given}")[1]
    return told(said + key) if good else None


def by_cryptography(path, password):
    try:
        key, first, more = theirs.load_key_and_certificates(octets_of(path), password.encode())
    except ValueError:
        return None
    return [key.private_numbers()], [one.public_bytes(Encoding.DER) for one in [first] * bool(first) + more]


def by_keytool_import(path, password):
    good, _ = attempt(f"keytool -importkeystore -srckeystore {path} -srcstorepass {password} -srcstoretype PKCS12 "
                      f"-destkeystore {path}.java -deststorepass {password} -deststoretype PKCS12")
    return by_openssl(f"{path}.java", password, "") if good else None


def by_pk12util(path, password):
    """Taken is what it can give again."""
    database = f"-d sql:{shutil.copytree(FOLDER / 'nss', FOLDER / (path + '.nss'))} -W '{password}'"
    good = attempt(f"pk12util -i {path} {database}")[0]
    return by_openssl(f"{path}.again", password, "") if good and attempt(
        f"pk12util -o {path}.again -n {CHINESE} {database}")[0] else None


def takes(program, path, password, key, certificates):
    """Whether a program finds the very key and certificates, or their number where it shows no more."""
    if program == LIST:
        good, said = attempt(f"keytool -list -rfc -storetype PKCS12 -keystore {path} -storepass {password}")
        return good and b"PrivateKeyEntry" in said and told(said)[1] == certificates
    if program == SHOW:
        good, said = attempt(f"pk12util -l {path} -d sql:nss -W '{password}'")
        return good and len(re.findall(rb"^(?:Key\(shrouded\)|Certificate)", said, re.M)) == 1 + len(certificates)
    read = {OLD: by_openssl, CERTTOOL: by_certtool, LOAD: by_cryptography, IMPORT: by_keytool_import, TAKE: by_pk12util,
            NEW: lambda *of_what: by_openssl(*of_what, "")}[program]
    return read(path, password) == ([key], certificates)


def ask(row):
    label, identity, certificates, options, refused, asked = row
    how = {name: options.pop(name) for name in ("password", "kind") if name in options}
    path = file(label.replace(" ", "-"), pkcs12.encoded(writer(identity, certificates, **options), **how))
    wanted = identity.key.private_numbers(), [one.der for one in certificates]
    password = os.fsdecode(how.get("password", pkcs12.PASSWORD))
    differ(label, {program for program in asked if not takes(program, path, password, *wanted)}, refused)


def look_at_attributes():
    """As each program names them; openssl shows names in ASCII alone."""
    names = [pkcs12.friendly_name("Small"), pkcs12.local_key_id(b"\1\2"), pkcs12.friendly_name(CHINESE)]
    context = writer(small, [small, usual], of_key=[USAGE], of_bag=names[:2],
                     of_certificates=[(*names[1], 1), (*names[0], 0), (*names[0], 2), (*USAGE, 7)])
    file("p12", pkcs12.encoded(context))
    done, said = attempt("openssl pkcs12 -legacy -in p12 -passin pass:abc123 -nodes -info")
    lines = re.findall(r"^(?:MAC|PKCS7|Shrouded|Cert|Key|Bag| ).*", said.decode(), re.M)
    differ("openssl -info", (done, {line.strip() for line in lines}), (True, {
        "MAC: sha1, Iteration 2000", "MAC length: 20, salt length: 20", "PKCS7 Data", "Certificate bag",
        "Shrouded Keybag: pbeWithSHA1And3-KeyTripleDES-CBC, Iteration 2000", "Bag Attributes", "Key Attributes",
        "PKCS7 Encrypted data: pbeWithSHA1And40BitRC2-CBC, Iteration 2000", "friendlyName: Small", "localKeyID: 01 02",
        "X509v3 Key Usage: 80"}))
    shown = run("openssl pkcs12 -legacy -in p12 -passin pass:abc123 -nodes").decode()
    shown = re.sub(r"-----BEGIN (.*)-----\n[^-]*-----END .*-----", r"\1", shown)
    differ("order", re.findall(r"[fl]\w+: .*\w|X509.*\w|CERT.*|PRIV.*", shown), [
        "friendlyName: Small", "localKeyID: 01 02", "X509v3 Key Usage: 80", "PRIVATE KEY", "localKeyID: 01 02",
        "CERTIFICATE", "friendlyName: Small", "X509v3 Key Usage: 80", "CERTIFICATE"])

    file("p12", pkcs12.encoded(writer(usual, [usual], **attributes(NAMES))))
    for command, count in (("certtool --p12-info --inder --password abc123 --infile p12", 2),
                           ("pk12util -l p12 -d sql:nss -W abc123", 2),
                           ("keytool -list -storetype PKCS12 -storepass abc123 -keystore p12", 1)):
        differ(command, run(command).decode().count(CHINESE), count)
    loaded = theirs.load_pkcs12(octets_of("p12"), b"abc123")
    differ("cryptography", loaded.cert.friendly_name.decode(), CHINESE)


def write_often():
    """One context: every file opens, holds two containers and is like no other."""
    context, found = writer(usual, [usual, small]), set()
    for _ in range(10):
        der = pkcs12.encoded(context)
        octet_string = inside(inside(der)[1][2])[1][1]
        differ("containers", len(inside(inside(octet_string)[0][2])), 2)
        differ("opened", by_openssl(file("p12", der), "abc123")[1], [usual.der, small.der])
        found.add(der)
    differ("files", (len(found), len({len(der) for der in found})), (10, 1))


(FOLDER / "nss").mkdir()
run("certutil -N -d sql:nss --empty-password")
with concurrent.futures.ThreadPoolExecutor(2) as pool:
    list(pool.map(ask, ROWS))
file("p12", pkcs12.encoded(writer(usual, [usual]), GBK))
differ("GBK is not UTF-8", by_openssl("p12", GBK.decode("gbk")), None)
look_at_attributes()
write_often()
print("\n".join(differences) or f"{len(ROWS)} files and the rest as expected")
sys.exit(1 if differences else 0)
