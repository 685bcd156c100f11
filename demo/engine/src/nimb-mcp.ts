// The demo uses the real tool server on its profile's database.

import "../../../mac/engine/src/nimb-mcp.ts";
