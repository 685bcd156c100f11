import { runEngine } from "./engine.ts";
import { slugOf } from "./slug.ts";

const address = process.env.EMAIL_USER || "hola@tallervidal.example";

runEngine({
  channel: "email",
  slug: slugOf(address),
  user: address,
  needsPairing: false,
  beat: [60, 120],
  liveTotal: 50,
});
