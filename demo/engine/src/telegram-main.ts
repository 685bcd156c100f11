import { runEngine } from "./engine.ts";

runEngine({
  channel: "telegram",
  slug: "telegram",
  user: "@taller_vidal_bot",
  needsPairing: false,
  beat: [30, 60],
  liveTotal: 80,
});
