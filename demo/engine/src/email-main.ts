import { runConnectSheet } from "./connect-sheet.ts";
import { runEngine } from "./engine.ts";
import { slugOf } from "./slug.ts";

const address = process.env.EMAIL_USER || "hola@tallervidal.example";
const [, , mode] = process.argv;

if (mode) {
  runConnectSheet(mode, address, process.env.EMAIL_PASS ?? "");
} else {
  runEngine({
    channel: "email",
    slug: slugOf(address),
    user: address,
    needsPairing: false,
    beat: [60, 120],
    liveTotal: 50,
  });
}
