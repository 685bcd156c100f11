import { runEngine, signOut } from "./lib/run.ts";

runEngine(async () => {
  await signOut("WhatsApp is not part of this program: the only library for it has a licence that it cannot be shipped under.");
  return { handle: () => {}, close: async () => {} };
});
