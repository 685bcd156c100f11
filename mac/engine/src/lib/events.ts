// The events that an engine prints, as described in docs/engine-protocol.md.

export interface MessageEvent {
  type: "message";
  convExternalId: string;
  providerMsgId: string;
  direction: "IN" | "OUT";
  body: string;
  ts: number;
  convTitle?: string;
  sender?: string;
  subject?: string;
  mediaType?: MediaType;
  mediaPath?: string;
  historical?: boolean;
}

export type MediaType = "image" | "audio" | "video" | "document" | "sticker";

/** What a `send` command is identified by: its draft, or its own id; undefined if no answer is expected. */
export type SendName = { draftId: string } | { sendId: string };

export type EngineEvent =
  | MessageEvent
  | { type: "qr"; qr: string }
  | { type: "status"; state: "connecting" | "open" | "close" | "logged_out"; user?: string }
  | { type: "log"; msg: string }
  | { type: "features"; files: boolean; maxBytes?: number; subject: boolean }
  | { type: "msgStatus"; providerMsgId: string; status: number }
  | { type: "reaction"; targetProviderMsgId: string; emoji: string }
  | ({ type: "media"; providerMsgId: string } & MediaState)
  | { type: "unread"; convExternalId: string; count: number }
  | { type: "contactName"; jid: string; name: string }
  | { type: "avatar"; jid: string; path: string }
  | { type: "phone"; jid: string; phone: string }
  | ({ type: "sendProgress" } & SendName)
  | ({ type: "sendAck"; providerMsgId?: string; error?: string; status: "sent" | "failed" | "uncertain" } & SendName);

export type MediaState =
  | { state: "requested" }
  | { state: "success"; mediaPath: string; mediaType: MediaType }
  | { state: "failed"; error: string };

export function mediaTypeOf(contentType: string): MediaType {
  const [kind] = contentType.toLowerCase().split("/");
  return kind === "image" || kind === "audio" || kind === "video" ? kind : "document";
}

const groupMark = "@g.us";

/** The chat's id if it has several members. */
export function groupId(providerId: string): string {
  return providerId + groupMark;
}

/** The provider's own id of a chat. */
export function providerChat(chatId: string): string {
  return chatId.endsWith(groupMark) ? chatId.slice(0, -groupMark.length) : chatId;
}
