import assert from "node:assert/strict";
import { execFileSync } from "node:child_process";
import { existsSync, readFileSync } from "node:fs";
import { join } from "node:path";
import { after, test } from "node:test";
import { fileURLToPath } from "node:url";
import { slugOf } from "../src/slug.ts";
import { entries, temporaryHome } from "./support.ts";

const makeProfile = fileURLToPath(new URL("../../make-profile", import.meta.url));

test("a profile holds an account for each engine, under the name that the engine files its media by", () => {
  const profile = join(temporaryHome(after), "with a blank");
  execFileSync(makeProfile, [profile]);
  execFileSync(makeProfile, [profile]); // a second time over the first is harmless
  const accounts = JSON.parse(readFileSync(join(profile, "share", "Corvane", "accounts.json"), "utf8"));
  const seen = accounts.map((account: Record<string, unknown>) => String(account.channelRaw).toLowerCase());
  assert.deepEqual(seen, Object.keys(entries));
  for (const { name, slug, email, channelRaw } of accounts) {
    assert.equal(slug, slugOf(name));
    if (channelRaw === "EMAIL") assert.equal(slug, slugOf(email));
  }
  for (const key of ["id", "slug", "mcpPort"]) assert.equal(new Set(accounts.map((a: any) => a[key])).size, 3);
  for (const entry of [...Object.values(entries), "nimb-mcp.ts"]) {
    assert.ok(existsSync(join(profile, "resources", "engine", "src", entry)));
  }
});
