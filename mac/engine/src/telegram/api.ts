// Calls to Telegram's Bot API.

import { Api, GrammyError, HttpError } from "grammy";
import { credential } from "../lib/channel.ts";
import { Limited } from "../lib/limits.ts";
import { Refused } from "../lib/outbox.ts";
import { SignInRefused } from "../lib/stay.ts";
import { baseAddress, networkError } from "../lib/web.ts";

export interface Telegram {
  api: Api;
  /** Where the bot's files are. */
  files: string;
}

/** The timeout for files; texts have a shorter one. */
const longestRequest = 300;

/** Throws `SignInRefused` if the account has no token. */
export function telegramFrom(): Telegram {
  const token = credential("TELEGRAM_BOT_TOKEN", "bot token");
  if (!/^\d+:[\w-]+$/.test(token)) throw new SignInRefused("This is no bot token; @BotFather shows it as 123456:ABC-DEF.");
  const apiRoot = baseAddress("CORVANE_TELEGRAM_API", "https://api.telegram.org");
  const api = new Api(token, { apiRoot, timeoutSeconds: longestRequest });
  api.config.use(async (previous, method, payload, signal) => {
    try {
      const answer = await previous(method, payload, signal);
      if (!answer.ok) throw refusal(new GrammyError(answer.description, answer, method, payload));
      return answer;
    } catch (error) {
      throw error instanceof HttpError ? networkError(error, "Telegram") : error;
    }
  });
  return { api, files: `${apiRoot}/file/bot${token}/` };
}

function refusal({ error_code: code, description, parameters }: GrammyError): Error {
  const words = description.replace(/^Bad Request: /, "");
  if (code === 401 || (code === 404 && description === "Not Found")) {
    return new SignInRefused("Telegram does not accept the bot token any more.");
  }
  if (code === 429) return new Limited((parameters.retry_after ?? 1) * 1000, "Telegram asks for fewer messages.");
  if (code === 409) return new Error(`Something else reads this bot's messages: ${description.replace(/^Conflict: /, "")}`);
  if (/chat not found/.test(words)) return new Refused("Telegram does not know this chat: a person has to write to the bot first.");
  return code >= 500 ? new Error(words) : new Refused(words);
}
