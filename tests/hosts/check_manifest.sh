#!/bin/sh
# Checks the manifest that lets programs use a component without registration: it is resource 1 of the DLL, XML,
# and says of the DLL what is true.
# Usage: check_manifest.sh VELKCOM_DLL amd64|x86

set -eu
wrestool --extract --raw --type=24 --name=1 "$1" | python3 -c '
import sys
import xml.etree.ElementTree as xml

root = xml.fromstring(sys.stdin.buffer.read())
space = "{urn:schemas-microsoft-com:asm.v1}"
assert root.tag == space + "assembly" and root.get("manifestVersion") == "1.0"

def expect(path, **attributes):
    element = root.find("/".join(space + part for part in path.split("/")))
    for name, value in attributes.items():
        assert element.get(name) == value, (path, name, element.get(name))

library = "{5694BB07-4353-4508-8C6C-0B988D8DD518}"
expect("assemblyIdentity", type="win32", name="VelkCom", processorArchitecture=sys.argv[1])
assert len(root.find(space + "assemblyIdentity").get("version").split(".")) == 4
expect("file", name="VelkCom.dll")
expect("file/comClass", clsid="{DD354E3B-3B0A-4871-81E2-879F41FB2B63}", threadingModel="Apartment",
       progid="VelkCom.Serial.1", tlbid=library)
assert root.find(f"{space}file/{space}comClass/{space}progid").text == "VelkCom.Serial"
expect("file/typelib", tlbid=library, version="1.0", helpdir="")
expect("comInterfaceExternalProxyStub", name="_Serial", iid="{9CFAE593-9198-4D82-A6D5-ADC2BBE2EB02}", tlbid=library,
       proxyStubClsid32="{00020420-0000-0000-C000-000000000046}")
' "$2"
