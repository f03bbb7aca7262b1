"""CRLs put together by hand. Nobody looks at their signature."""


def tlv(identifier, content):
    size = len(content)
    octets = size.to_bytes((size.bit_length() + 7) // 8, "big")
    header = bytes([size]) if size < 128 else bytes([0x80 | len(octets)]) + octets
    return bytes([identifier]) + header + content


def crl_of(time, entries):
    algorithm = bytes.fromhex("300506032b6570")
    issuer = bytes.fromhex("300f310d300b06035504030c046c697374")
    return tlv(0x30, tlv(0x30, b"\2\1\1" + algorithm + issuer + time + tlv(0x30, entries)) +
               algorithm + tlv(3, bytes(65)))
