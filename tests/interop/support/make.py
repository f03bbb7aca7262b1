"""Fresh certificates, made by openssl and certtool in one folder."""

import pathlib

from support.oracle import run

CONFIG = """
[req]
prompt = no
utf8 = yes
string_mask = {mask}
distinguished_name = name
x509_extensions = extensions
[name]
{name}
[extensions]
{extensions}
{sections}
"""

KEYS = {
    "rsa": ["-algorithm", "RSA", "-pkeyopt", "rsa_keygen_bits:2048"],
    "rsa-1031": ["-algorithm", "RSA", "-pkeyopt", "rsa_keygen_bits:1031"],
    "rsa-pss": ["-algorithm", "RSA-PSS", "-pkeyopt", "rsa_keygen_bits:2048"],
    "p256": ["-algorithm", "EC", "-pkeyopt", "ec_paramgen_curve:P-256"],
    "p256-explicit": ["-algorithm", "EC", "-pkeyopt", "ec_paramgen_curve:P-256",
                      "-pkeyopt", "ec_param_enc:explicit"],
    "p384": ["-algorithm", "EC", "-pkeyopt", "ec_paramgen_curve:P-384"],
    "p521": ["-algorithm", "EC", "-pkeyopt", "ec_paramgen_curve:P-521"],
    "secp256k1": ["-algorithm", "EC", "-pkeyopt", "ec_paramgen_curve:secp256k1"],
    "sm2": ["-algorithm", "EC", "-pkeyopt", "ec_paramgen_curve:SM2"],
    "ed25519": ["-algorithm", "ED25519"],
    "ed448": ["-algorithm", "ED448"],
}

# What `req` cannot find out by itself.
DIGESTS = {"sm2": ["-sm3", "-sigopt", "distid:1234567812345678"]}


class Maker:
    def __init__(self, folder):
        self.folder = pathlib.Path(folder)
        self.count = 0

    def path(self, name):
        return self.folder / name

    def file(self, name, octets):
        self.path(name).write_bytes(octets)
        return self.path(name)

    def key(self, kind="ed25519"):
        path = self.path(f"{kind}.key")
        if not path.exists():
            run(["openssl", "genpkey", *KEYS[kind], "-out", path])
        return path

    def dsa_key(self):
        parameters, key = self.path("dsa.params"), self.path("dsa.key")
        run(["openssl", "genpkey", "-genparam", "-algorithm", "DSA", "-pkeyopt",
             "dsa_paramgen_bits:1024", "-pkeyopt", "dsa_paramgen_q_bits:160", "-out", parameters])
        run(["openssl", "genpkey", "-paramfile", parameters, "-out", key])
        return key

    def certificate(self, *arguments, key="ed25519", mask="utf8only", name="CN = test",
                    extensions="", sections="", key_file=None):
        """One self-signed certificate in PEM."""
        self.count += 1
        config = self.path(f"{self.count}.cnf")
        config.write_text(CONFIG.format(mask=mask, name=name, extensions=extensions,
                                        sections=sections))
        return run(["openssl", "req", "-x509", "-new", "-key", key_file or self.key(key),
                    "-config", config, *DIGESTS.get(key, []), *arguments])

    def version_1(self):
        request = self.path("v1.csr")
        run(["openssl", "req", "-new", "-key", self.key(), "-subj", "/CN=first version",
             "-out", request])
        return run(["openssl", "x509", "-req", "-in", request, "-signkey", self.key()])

    def by_certtool(self, template):
        key, path = self.key("p256"), self.file("certtool.cfg", template.encode())
        return run(["certtool", "--generate-self-signed", "--load-privkey", key, "--template",
                    path])

    @staticmethod
    def der(pem):
        return run(["openssl", "x509", "-outform", "DER"], input=pem)
