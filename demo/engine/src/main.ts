import { runEngine } from "./engine.ts";

runEngine({
  channel: "whatsapp",
  slug: process.env.WHATSAPP_ACCOUNT_NAME || "taller-vidal",
  user: "Marta Vidal · Taller Vidal",
  needsPairing: true,
  beat: [12, 24],
  liveTotal: 240,
});
