"""What `openssl x509` and `zacert show --format json` say of the same certificate, in one form."""

import datetime
import json
import os
import re
import subprocess

TOOL = os.environ.get("ZACERT_TOOL", "zacert")

STRING_TYPES = {
    "UTF8STRING": "UTF8String",
    "PRINTABLESTRING": "PrintableString",
    "IA5STRING": "IA5String",
    "T61STRING": "TeletexString",
    "BMPSTRING": "BMPString",
    "NUMERICSTRING": "NumericString",
    "VISIBLESTRING": "VisibleString",
    "UNIVERSALSTRING": "UniversalString",
}

KEY_USAGES = {
    "Digital Signature": "digitalSignature",
    "Non Repudiation": "nonRepudiation",
    "Key Encipherment": "keyEncipherment",
    "Data Encipherment": "dataEncipherment",
    "Key Agreement": "keyAgreement",
    "Certificate Sign": "keyCertSign",
    "CRL Sign": "cRLSign",
    "Encipher Only": "encipherOnly",
    "Decipher Only": "decipherOnly",
}

TITLES = {
    "X509v3 Subject Key Identifier": "subject_key_identifier",
    "X509v3 Authority Key Identifier": "authority_key_identifier",
    "X509v3 Key Usage": "key_usage",
    "X509v3 Basic Constraints": "basic_constraints",
    "X509v3 Subject Alternative Name": "dns_names",
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
    return subprocess.run(command, check=True, capture_output=True, **options).stdout


def show(files, data=b""):
    """The tool's JSON for files that must all be good."""
    return json.loads(run([TOOL, "show", "--format", "json", *map(str, files)], input=data))


def by_openssl(certificate, form="PEM"):
    output = run(["openssl", "x509", "-inform", form, *X509_OPTIONS], input=certificate)
    head, _, key = output.decode().partition("        Subject Public Key Info:")
    facts = {
        "subject": names_of_openssl(head, "subject"),
        "issuer": names_of_openssl(head, "issuer"),
        "serial": re.search(r"^serial=(.*)$", head, re.M)[1].lower(),
        "not_before": time_of_openssl(re.search(r"^notBefore=(.*)$", head, re.M)[1]),
        "not_after": time_of_openssl(re.search(r"^notAfter=(.*)$", head, re.M)[1]),
    }
    bits = re.search(r"Public-Key: \((\d+) bit", key)
    if bits:
        facts["bits"] = int(bits[1])
    facts.update(extensions_of_openssl(head))
    return facts


def names_of_openssl(text, field):
    block = re.search(rf"^{field}=\n?((?:    .*\n)*)", text, re.M)[1]
    return [[attribute_of_openssl(part) for part in re.split(r"(?<!\\) \+ ", line[4:])]
            for line in block.split("\n") if line.strip()]


def attribute_of_openssl(text):
    oid, _, value = text.partition("=")
    string_type, _, value = value.partition(":")
    value = re.sub(r"\\([0-9A-F]{2}|.)",
                   lambda m: chr(int(m[1], 16)) if len(m[1]) == 2 else m[1], value)
    return oid, STRING_TYPES.get(string_type, string_type), value


def time_of_openssl(text):
    time = datetime.datetime.strptime(text, "%b %d %H:%M:%S %Y GMT")
    return time.strftime("%Y-%m-%dT%H:%M:%SZ")


def extensions_of_openssl(text):
    facts = {}
    for title, critical, body in re.findall(r"^(X509v3 .*?): ?(critical)?\n((?:    .*\n)*)", text,
                                            re.M):
        if title in TITLES:
            name = TITLES[title]
            facts[name] = value_of_openssl(name, body.strip())
            facts[name + "_critical"] = critical == "critical"
    return facts


def value_of_openssl(name, body):
    if name == "key_usage":
        return [KEY_USAGES[usage] for usage in body.split(", ") if usage]
    if name == "basic_constraints":
        value = {"ca": "CA:TRUE" in body}
        path_length = re.search(r"pathlen:(\d+)", body)
        return value | ({"path_length": int(path_length[1])} if path_length else {})
    if name == "dns_names":
        return re.findall(r"(?:^|, )DNS:([^,\n]*)", body)
    key_id = re.search(r"^\s*(?:keyid:)?((?:[0-9A-F]{2}:)*[0-9A-F]{2})$", body, re.M)
    return key_id[1].replace(":", "").lower() if key_id else None


def by_tool(certificate):
    """The same facts out of one object of the tool's JSON."""
    facts = {
        "subject": names_of_tool(certificate["subject"]),
        "issuer": names_of_tool(certificate["issuer"]),
        "serial": certificate["serial"],
        **certificate["validity"],
        "bits": certificate["public_key"].get("bits"),
    }
    for extension in certificate["extensions"]:
        for name in TITLES.values():
            value = value_of_tool(name, extension)
            if value is not None:
                facts[name] = value[0]
                facts[name + "_critical"] = extension["critical"]
    return facts


def names_of_tool(name):
    return [[(a["oid"], a["string_type"], a["value"]) for a in rdn] for rdn in name]


def value_of_tool(name, extension):
    """The value in a tuple, since None is one; None for another extension."""
    if name == "dns_names" and "subject_alt_name" in extension:
        return ([n["value"] for n in extension["subject_alt_name"] if n["form"] == "dNSName"],)
    if name not in extension:
        return None
    value = extension[name]
    return (value.get("key_id") if name == "authority_key_identifier" else value,)


def differences(expected, actual):
    """Lines that tell facts of openssl which the tool does not share, or extensions it adds."""
    names = set(expected) | {name for name in actual if name in TITLES.values()}
    return [f"{name}: openssl {expected.get(name)!r}, zacert {actual.get(name)!r}"
            for name in sorted(names) if expected.get(name) != actual.get(name)]
