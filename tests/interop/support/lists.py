"""CRLs put together by hand. Nobody looks at their signature."""


def tlv(identifier, content):
    size = len(content)
    octets = size.to_bytes((size.bit_length() + 7) // 8, "big")
    return (bytes([identifier]) + (bytes([size]) if size < 128 else
                                   bytes([0x80 | len(octets)]) + octets) + content)


def crl_of(time, entries):
    """By CN=list, of version 2, with the entries as they are given."""
    algorithm = bytes.fromhex("300506032b6570")
    issuer = tlv(0x30, tlv(0x31, tlv(0x30, bytes.fromhex("0603550403") + tlv(12, b"list"))))
    return tlv(0x30, tlv(0x30, b"\2\1\1" + algorithm + issuer + time + tlv(0x30, entries)) +
               algorithm + tlv(3, bytes(65)))
