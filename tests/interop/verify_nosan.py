#!/usr/bin/env python3
"""What openssl and certtool sign verifies here: certificates, CRLs and requests, RSA and P-256."""
import ctypes
import os
import pathlib
import subprocess
import tempfile

lib = ctypes.CDLL(os.environ["ZACERT_LIB"])

POINT = "3059301306072a8648ce3d020106082a8648ce3d03010703420004"  # of a key's DER, before x and y

CONFIGURATION = ("[ca]\ndefault_ca = only\n"
                 "[only]\ndatabase = database\ndefault_md = sha256\ndefault_crl_days = 30\n")
TEMPLATE = """organization = "Organisation"
cn = "%s"
expiration_days = %d
crl_next_update = 30
crl_number = 1
"""

SIGN = {"openssl": {"ca": "req -x509 -new -key ca.key -subj /O=Organisation/CN=CA -days 60 "
                          "-out ca.pem",
                    "request": "req -new -key user.key -subj /CN=user.example -out request.pem "
                               "-addext subjectAltName=DNS:user.example",
                    "certificate": "x509 -req -in request.pem -CA ca.pem -CAkey ca.key -days 30 "
                                   "-set_serial 5 -copy_extensions copy -out certificate.pem",
                    "crl": "ca -gencrl -config configuration -keyfile ca.key -cert ca.pem "
                           "-out crl.pem"},
        "certtool": {"ca": "--generate-self-signed --template ca --load-privkey ca.key "
                           "--outfile ca.pem",
                     "request": "--generate-request --template user --load-privkey user.key "
                                "--outfile request.pem",
                     "certificate": "--generate-certificate --template user "
                                    "--load-request request.pem --load-ca-certificate ca.pem "
                                    "--load-ca-privkey ca.key --outfile certificate.pem",
                     "crl": "--generate-crl --template ca --load-ca-privkey ca.key "
                            "--load-ca-certificate ca.pem --load-certificate certificate.pem "
                            "--outfile crl.pem"}}
KEYS = {"rsa": "genpkey -algorithm RSA -pkeyopt rsa_keygen_bits:2048 -out",
        "ecc": "genpkey -algorithm EC -pkeyopt ec_paramgen_curve:P-256 -out"}
PEM_TO_DER = {"ca": "x509", "certificate": "x509", "crl": "crl", "request": "req"}


def run(command, folder):
    done = subprocess.run(command.split(), cwd=folder, stdin=subprocess.DEVNULL, check=False,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
    assert done.returncode == 0, f"{command}: {done.stdout.decode()}"


@ctypes.CFUNCTYPE(ctypes.c_int32, ctypes.c_void_p, ctypes.c_uint32, ctypes.c_void_p,
                  ctypes.c_void_p, ctypes.c_void_p, ctypes.POINTER(ctypes.c_uint32))
def ecdsa(tbs, tbs_len, _, signature, point, result):
    """Leaves the work to openssl."""
    length = ctypes.c_uint32(0)
    out = (ctypes.c_uint8 * 80)()
    lib.ZA_Encode_ECCSignStructToDerData(ctypes.c_void_p(signature), out, ctypes.byref(length))
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        (folder / "tbs").write_bytes(ctypes.string_at(tbs, tbs_len))
        (folder / "signature").write_bytes(bytes(out[:length.value]))
        (folder / "key").write_bytes(bytes.fromhex(POINT) + ctypes.string_at(point, 64))
        done = subprocess.run("openssl dgst -sha256 -verify key -keyform DER -signature signature "
                              "tbs".split(), cwd=folder, check=False, stdout=subprocess.DEVNULL,
                              stderr=subprocess.DEVNULL)
    result[0] = 1 if done.returncode == 0 else 0
    return 0


def verify(family, kind, ca, der):
    function, inputs = {
        ("rsa", "certificate"): (lib.ZA_VerifyCert, (ca, der)),
        ("ecc", "certificate"): (lib.ZA_ECC_VerifyCert, (ca, der)),
        ("rsa", "crl"): (lib.ZA_VerifyCrl, (ca, der)),
        ("ecc", "crl"): (lib.ZA_ECC_VerifyCrl, (ca, der)),
        ("rsa", "request"): (lib.ZA_VerifyCsr_Sign, (der,)),
        ("ecc", "request"): (lib.ZA_VerifyECCsr, (der,))}[family, kind]
    arguments = [argument for octets in inputs for argument in (octets, len(octets))]
    return function(*arguments, *([ecdsa] if family == "ecc" else []))


def check(tool, family, folder):
    for name in ("ca", "user"):
        run(f"openssl {KEYS[family]} {name}.key", folder)
        (folder / name).write_text(TEMPLATE % (name, 60 if name == "ca" else 30), encoding="ascii")
    (folder / "configuration").write_text(CONFIGURATION, encoding="ascii")
    (folder / "database").touch()
    der = {}
    for kind, command in SIGN[tool].items():
        run(f"{tool} {command}", folder)
        run(f"openssl {PEM_TO_DER[kind]} -in {kind}.pem -outform DER -out {kind}.der", folder)
        der[kind] = (folder / f"{kind}.der").read_bytes()
    for kind in ("certificate", "crl", "request"):
        what = f"{kind} of {tool}, {family}"
        assert verify(family, kind, der["ca"], der[kind]) == 0, what
        changed = der[kind][:-1] + bytes([der[kind][-1] ^ 1])
        assert verify(family, kind, der["ca"], changed) == 128, what
    pem = (folder / "request.pem").read_bytes()
    pem = pem[pem.index(b"-----BEGIN"):]  # certtool writes the request as text before it
    assert verify(family, "request", der["ca"], pem) == 0, f"PEM of {tool}, {family}"
    assert verify(family, "certificate", der["ca"], der["ca"]) == 0, f"CA of {tool}, {family}"


for chosen_tool in SIGN:
    for chosen_family in KEYS:
        with tempfile.TemporaryDirectory() as new_folder:
            check(chosen_tool, chosen_family, pathlib.Path(new_folder))
