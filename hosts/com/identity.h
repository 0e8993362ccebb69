// Identifiers of the automation interface. They never change; the registry scripts carry them too.
#pragma once

#define NORVANE_LIBID "C473FA16-FB0F-4AA7-AF1B-8C769AE8C66E"
#define NORVANE_IID_IFUNCTIONS "9681473B-8BD1-4A89-A3C1-8C8A3249D660"
#define NORVANE_CLSID_FUNCTIONS "04BBA99A-8E89-4A10-B7BE-6498EBB49239"
// The property beside the calculations, whose numbers begin with 1.
#define NORVANE_DISPID_IDENTITY 1000
#define NORVANE_APPID "DD0B5C96-0D3B-4290-BC44-C05F438C71BB"
