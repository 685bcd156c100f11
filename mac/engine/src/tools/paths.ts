import { homedir } from "node:os";
import { isAbsolute, join } from "node:path";

/** Relative values of these variables are ignored (XDG Base Directories). */
function folderFrom(variable: string, otherwise: string): string {
  const named = process.env[variable] ?? "";
  return isAbsolute(named) ? named : join(homedir(), otherwise);
}

/** The folder of one profile, with the database and the files beside it. */
export interface Profile {
  database: string;
  token: string;
  webToken: string;
  defaults: string;
}

export function profileFromEnvironment(): Profile {
  const data = join(folderFrom("XDG_DATA_HOME", ".local/share"), "Corvane");
  return {
    database: join(data, "nimblocal.db"),
    token: join(data, "mcp-token"),
    webToken: join(data, "companion.jwt"),
    defaults: join(folderFrom("XDG_CONFIG_HOME", ".config"), "Corvane", "defaults.ini"),
  };
}
