import assert from "node:assert/strict";
import { writeFileSync } from "node:fs";
import { join } from "node:path";
import { test } from "node:test";
import { messages, openPost, servers, withSubject } from "./mail-support.ts";
import { own, ownFolder } from "./mail-servers.ts";
import { hostileMails } from "./mail-hostile.ts";

test("500 hostile mails all arrive, once, as plain text, and the engine goes on", async () => {
  const { me, put, start } = openPost();
  const maildir = servers.maildir(me);
  for (const folder of ["", "cur", "new", "tmp"]) ownFolder(join(maildir, folder));
  hostileMails(500).forEach((mail, index) => {
    const path = join(maildir, "cur", `${1_790_000_000 + index}.M${index}.hostile:2,S`);
    writeFileSync(path, mail);
    own(path);
  });
  const engine = start();
  const mails = (): Set<unknown> => new Set(messages(engine.events()).map(({ providerMsgId }) => String(providerMsgId).split("/")[0]));
  await engine.until(() => mails().size >= 491);
  await put("After all");
  await engine.until((events) => withSubject(events, "After all").length > 0);
  const said = messages(await engine.end());
  assert.equal(mails().size, 491 + 1);
  for (const { subject = "", convExternalId, convTitle = "", body, ts } of said) {
    assert.doesNotMatch(`${subject}${convExternalId}${convTitle}`, /[\p{Cc}\u2028]/u);
    assert.ok(String(body).length <= 200_010 && !/alert\(1\)|[\u0000\r]/.test(String(body)));
    assert.ok(Number(ts) > Date.UTC(1985, 0) && Number(ts) < Date.UTC(2050, 0));
  }
  assert.ok(said.filter(({ providerMsgId }) => /\//.test(String(providerMsgId))).length > 50);
});
