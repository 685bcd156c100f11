// Chooses the folders to mirror by their special use.

import type { ImapFlow, ListResponse } from "imapflow";

export interface MailFolders {
  /** Paths, INBOX first. */
  mirrored: string[];
  /** Where copies of sent mail are stored. */
  sent: string | undefined;
}

const never = new Set(["\\Drafts", "\\Junk", "\\Trash"]);

/** The inbox, the sent mail, the user's own folders and the archive; a folder with all mail replaces the last two. */
export async function mailFolders(client: ImapFlow): Promise<MailFolders> {
  const all = (await client.list()).filter(({ flags }) => !flags.has("\\Noselect") && !flags.has("\\NonExistent"));
  const used = (use: string): ListResponse | undefined => all.find(({ specialUse }) => specialUse === use);
  const sent = used("\\Sent")?.path;
  const allMail = used("\\All")?.path;
  const excluded = all.filter(({ specialUse = "" }) => never.has(specialUse)).map(({ path, delimiter }) => path + delimiter);
  const isMirrored = ({ path, specialUse = "" }: ListResponse): boolean =>
    !never.has(specialUse) && specialUse !== "\\Flagged" && !excluded.some((parent) => path.startsWith(parent));
  const own = allMail ? [allMail] : all.filter(isMirrored).map(({ path }) => path);
  const mirrored = new Set(["INBOX", ...(sent ? [sent] : []), ...own]);
  return { mirrored: [...mirrored], sent };
}
