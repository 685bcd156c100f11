// Converts texts and reactions between Slack's markup and plain text.

/** The readable text: names for members, addresses for links. */
export async function plainText(text: string, nameOf: (member: string) => Promise<string>): Promise<string> {
  const marks = [...text.matchAll(/<([@#!]?)([^<>|]*)(?:\|([^<>]*))?>/g)];
  let said = "";
  let end = 0;
  for (const { index, 0: whole, 1: kind, 2: target, 3: label } of marks) {
    said += text.slice(end, index) + (await plainMark(kind, target, label, nameOf));
    end = index + whole.length;
  }
  return unescaped(said + text.slice(end));
}

async function plainMark(kind: string, target: string, label: string | undefined, nameOf: (member: string) => Promise<string>): Promise<string> {
  if (kind === "@") return `@${label || (await nameOf(target))}`;
  if (kind === "#") return `#${label || target}`;
  if (kind === "!") return label || `@${target.split("^")[0]}`;
  const address = target.replace(/^(mailto|tel):/, "");
  return label && label !== address && label !== target ? `${label} (${address})` : address;
}

function unescaped(text: string): string {
  return text.replaceAll("&lt;", "<").replaceAll("&gt;", ">").replaceAll("&amp;", "&");
}

/** Escapes the text, so that Slack finds no markup in it. */
export function escaped(text: string): string {
  return text.replaceAll("&", "&amp;").replaceAll("<", "&lt;").replaceAll(">", "&gt;");
}

const names: Record<string, string> = {
  "+1": "👍", thumbsup: "👍", "-1": "👎", thumbsdown: "👎", heart: "❤️", joy: "😂", open_mouth: "😮", cry: "😢",
  pray: "🙏", tada: "🎉", fire: "🔥", clap: "👏", eyes: "👀", white_check_mark: "✅", heavy_check_mark: "✔️", x: "❌",
  rocket: "🚀", raised_hands: "🙌", ok_hand: "👌", wave: "👋", muscle: "💪", thinking_face: "🤔", smile: "😄",
  slightly_smiling_face: "🙂", grinning: "😀", laughing: "😆", wink: "😉", blush: "😊", heart_eyes: "😍", sob: "😭",
  angry: "😠", rage: "😡", scream: "😱", partying_face: "🥳", "100": "💯", star: "⭐", bulb: "💡", question: "❓",
  exclamation: "❗", point_up: "☝️", handshake: "🤝", coffee: "☕", hourglass: "⌛", memo: "📝", warning: "⚠️",
};

/** A reaction as a character; custom ones keep their name between colons. */
export function emojiOf(name: string): string {
  const [plain] = name.split("::");
  return names[plain] ?? `:${plain}:`;
}

const variation = /\uFE0F/g;

/** Slack's name for an emoji; undefined if it is unknown here. */
export function nameOfEmoji(emoji: string): string | undefined {
  const plain = emoji.replace(variation, "");
  return Object.keys(names).find((name) => names[name].replace(variation, "") === plain);
}
