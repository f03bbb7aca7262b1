"""What `openssl x509` and `zacert show --format json` say of the same certificate, in one form."""

import datetime
import json
import os
import re
import subprocess

TOOL = os.environ["ZACERT_TOOL"]

KEY_USAGES = {
    "Digital Signature": "digitalSignature", "Non Repudiation": "nonRepudiation",
    "Key Encipherment": "keyEncipherment", "Data Encipherment": "dataEncipherment",
    "Key Agreement": "keyAgreement", "Certificate Sign": "keyCertSign", "CRL Sign": "cRLSign",
    "Encipher Only": "encipherOnly", "Decipher Only": "decipherOnly",
}

# Names with attribute types by number and string types shown, the five extensions, and of the rest
# of the text the public key alone.
X509_OPTIONS = [
    "-noout", "-nameopt", "oid,sep_multiline,utf8,esc_2253,esc_ctrl,show_type,dump_nostr,dump_der",
    "-subject", "-issuer", "-serial", "-dates",
    "-ext", "subjectKeyIdentifier,authorityKeyIdentifier,keyUsage,basicConstraints,subjectAltName",
    "-text", "-certopt", "no_header,no_version,no_serial,no_signame,no_issuer,no_validity,"
    "no_subject,no_extensions,no_sigdump,no_aux"]


def run(command, **options):
    """Standard output of a command that must succeed."""
    result = subprocess.run(command, capture_output=True, check=False, **options)
    if result.returncode != 0:
        raise RuntimeError(f"{command} ended with {result.returncode}: {result.stderr.decode()}")
    return result.stdout


def show(files, octets=b""):
    """The tool's JSON for files that must all be good."""
    return json.loads(run([TOOL, "show", "--format", "json", *map(str, files)], input=octets))


def key_id(body):
    octets = re.search(r"^\s*(?:keyid:)?((?:[0-9A-F]{2}:)*[0-9A-F]{2})$", body, re.M)
    return octets[1].replace(":", "").lower() if octets else None


def basic_constraints(body):
    path_length = re.search(r"pathlen:(\d+)", body)
    return ({"ca": "CA:TRUE" in body} |
            ({"path_length": int(path_length[1])} if path_length else {}))


# The title of openssl and what to make of the text below it; the tool's member and what of it.
EXTENSIONS = [
    ("Subject Key Identifier", key_id, "subject_key_identifier", str),
    ("Authority Key Identifier", key_id, "authority_key_identifier", lambda v: v.get("key_id")),
    ("Key Usage", lambda body: [KEY_USAGES[usage] for usage in body.split(", ") if usage],
     "key_usage", list),
    ("Basic Constraints", basic_constraints, "basic_constraints", dict),
    ("Subject Alternative Name", lambda body: re.findall(r"(?:^|, )DNS:([^,\n]*)", body),
     "subject_alt_name", lambda v: [n["value"] for n in v if n["form"] == "dNSName"]),
]


def by_openssl(certificate, form="PEM"):
    output = run(["openssl", "x509", "-inform", form, *X509_OPTIONS], input=certificate).decode()
    head, _, key = output.partition("        Subject Public Key Info:")
    fields = dict(re.findall(r"^(\w+)=(.*\n(?:    .*\n)*)", head, re.M))
    bits = re.search(r"Public-Key: \((\d+) bit", key)
    facts = {
        "subject": name_of_openssl(fields["subject"]), "issuer": name_of_openssl(fields["issuer"]),
        "serial": fields["serial"].strip().lower(),
        "not_before": time_of_openssl(fields["notBefore"]),
        "not_after": time_of_openssl(fields["notAfter"]),
        "bits": int(bits[1]) if bits else None,
    }
    for title, read, member, _ in EXTENSIONS:
        found = re.search(rf"^X509v3 {title}: ?(critical)?\n((?:    .*\n)*)", head, re.M)
        if found:
            facts[member] = (read(found[2].strip()), found[1] is not None)
    return facts


def name_of_openssl(text):
    return [[attribute_of_openssl(part) for part in re.split(r"(?<!\\) \+ ", line[4:])]
            for line in text.split("\n") if line.strip()]


def attribute_of_openssl(text):
    oid, string_type, value = re.fullmatch(r"(.*?)=(.*?):(.*)", text, re.S).groups()
    value = re.sub(r"\\([0-9A-F]{2}|.)",
                   lambda m: chr(int(m[1], 16)) if len(m[1]) == 2 else m[1], value)
    return oid, string_type.replace("T61", "TELETEX"), value


def time_of_openssl(text):
    time = datetime.datetime.strptime(text.strip(), "%b %d %H:%M:%S %Y GMT")
    return time.strftime("%Y-%m-%dT%H:%M:%SZ")


def by_tool(certificate):
    """The same facts out of one object of the tool's JSON."""
    facts = {name: [[(a["oid"], a["string_type"].upper(), a["value"]) for a in rdn]
                    for rdn in certificate[name]] for name in ("subject", "issuer")}
    # openssl does not tell the size of Edwards curves' keys.
    key = certificate["public_key"]
    bits = None if key["algorithm"].startswith("Ed") else key.get("bits")
    facts |= {"serial": certificate["serial"], **certificate["validity"], "bits": bits}
    for extension in certificate["extensions"]:
        for _, _, member, read in EXTENSIONS:
            if member in extension:
                facts[member] = (read(extension[member]), extension["critical"])
    return facts
