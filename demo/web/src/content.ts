// The workspaces, and the few rows in them that can be pulled.

interface Workspace {
  id: string;
  name: string;
  slug: string;
  isDefault: boolean;
  status: string;
  integrations: object[];
}

export interface Organization {
  id: string;
  name: string;
  slug: string;
  workspaces: Workspace[];
  integrations: object[];
}

const integration = (id: string, type: string, provider: string, displayName: string, status: string): object =>
  ({ id, type, provider, displayName, username: null, status, avatarUrl: null, workspaceId: null });

const workspace = (id: string, name: string, isDefault: boolean, integrations: object[] = []): Workspace =>
  ({ id, name, slug: id.replace("ws-", ""), isDefault, status: "ACTIVE", integrations });

export const organizations: Organization[] = [
  {
    id: "org-taller",
    name: "Taller Vidal",
    slug: "taller-vidal",
    workspaces: [
      workspace("ws-studio", "Studio", true, [integration("in-instagram", "INSTAGRAM", "meta", "tallervidal", "CONNECTED")]),
      workspace("ws-fairs", "Fairs and markets", false),
    ],
    integrations: [
      integration("in-shop", "SHOP", "shopify", "Taller Vidal shop", "CONNECTED"),
      integration("in-mail", "EMAIL", "gmail", "hola@tallervidal.example", "EXPIRED"),
    ],
  },
  { id: "org-school", name: "Ceramics school", slug: "ceramics-school", workspaces: [workspace("ws-school", "Courses", true)], integrations: [] },
];

/** "many": 10,000 workspaces; "gone": without the first one. */
export type Variant = "many" | "gone";

export function bootstrap(variant: Variant | undefined): object {
  const [first, ...others] = organizations;
  let { workspaces } = first;
  if (variant === "gone") workspaces = workspaces.slice(1);
  if (variant === "many") workspaces = Array.from({ length: 10_000 }, (_, index) => workspace(`ws-${index}`, `Workspace ${index}`, index === 0));
  return { activeOrganizationId: first.id, organizations: [{ ...first, workspaces }, ...others] };
}

const began = Date.now();
const chat = { channel: "INSTAGRAM", externalId: "ig-lucia" };
const pages: Record<string, object> = {
  crm: {
    contacts: [
      { id: "c-lucia", name: "Lucía Ferrer", identities: [{ channel: "INSTAGRAM", handle: "ig-lucia" }] },
      { id: "c-hotel", name: "Hotel Mirador", identities: [{ channel: "EMAIL", handle: "compras@mirador.example", email: "compras@mirador.example" }] },
    ],
    deals: [{ id: "d-hotel", contactId: "c-hotel", name: "Breakfast set, 120 pieces", company: "Hotel Mirador", stage: "Proposal", value: "4,800 €" }],
  },
  inbox: {
    conversations: [{ ...chat, accountId: "tallervidal", title: "Lucía Ferrer", contactId: "c-lucia", lastTs: began - 60_000, unread: 1 }],
    messages: [
      { id: "m-1", ...chat, direction: "OUT", body: "The blue bowls are back on the shelf.", ts: began - 3_600_000 },
      { id: "m-2", ...chat, direction: "IN", body: "Lovely! Can you keep two for me?", sender: "Lucía Ferrer", ts: began - 60_000 },
    ],
  },
  outbound_drafts: { drafts: [{ id: "dr-1", ...chat, body: "Of course, they wait for you until Friday." }] },
};

/** A page of a source: everything on the first request. */
export function pull(source: string, since: number): object | undefined {
  if (!(source in pages)) return undefined;
  return { cursor: 1, more: false, ...(since < 1 && pages[source]) };
}
