# Python with pywin32; not run by the tests, which have no Python for Windows.
# Saves an output to a JSON file, or writes it back:
#   python backup_output.py HOST PORT PASSWORD save|restore OUTPUT FILE
import json
import sys

from win32com.client import gencache

ALL_ITEMS = 255


def must(result, action):
    if result != 0:
        sys.exit(f"{action}: result {result}")


def save(serial, output, file):
    # Arguments that are written back come behind the result.
    result, mode, items, count = serial.Ctl_Param("R", output, "", "", ALL_ITEMS)
    must(result, "the output cannot be read")
    with open(file, "w", encoding="ascii") as stream:
        json.dump({"output": output, "mode": mode, "items": [ord(c) for c in items]}, stream)
    print(f"saved output {output}: mode {mode}, {count} items")


def restore(serial, output, file):
    with open(file, encoding="ascii") as stream:
        saved = json.load(stream)
    items = "".join(map(chr, saved["items"]))
    result, *_ = serial.Ctl_Param("W", output, saved["mode"], items, len(items))
    must(result, "the output cannot be written")
    print(f"restored output {output}")


def main(host, port, password, action, output, file):
    port = int(port)
    serial = gencache.EnsureDispatch("VelkCom.Serial")
    # The port is a signed 16-bit number.
    result, _ = serial.OpenTCP(host, port - 65536 if port > 32767 else port, password)
    must(result, "the link does not open")
    try:
        {"save": save, "restore": restore}[action](serial, int(output), file)
    finally:
        serial.CloseTCP()


if __name__ == "__main__":
    if len(sys.argv) != 7:
        sys.exit("usage: backup_output.py HOST PORT PASSWORD save|restore OUTPUT FILE")
    main(*sys.argv[1:])
