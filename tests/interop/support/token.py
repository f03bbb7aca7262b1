"""A token with keys, which programs reach through PKCS#11."""

import os
import pathlib
import subprocess

MAKE = pathlib.Path(os.environ["ZACERT_SOURCE_DIR"], "tests/data/companion/make-token.sh")
SOFTHSM = next(pathlib.Path("/usr/lib").rglob("libsofthsm2.so"))


def make_token(folder):
    os.environ["SOFTHSM2_CONF"] = str(folder / "conf")
    subprocess.run(["bash", MAKE, folder, SOFTHSM], check=True, stdout=subprocess.DEVNULL)


def uri(key):
    return f"pkcs11:token=a%20token;{key}?module-path={SOFTHSM}"
