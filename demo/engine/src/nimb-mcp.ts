// The demonstration has the real tool server: it works on the profile's database, whoever filled it.

import "../../../mac/engine/src/nimb-mcp.ts";
