// Papers: PDF pages and tables.

interface Paper {
  title: string;
  lines: readonly string[];
}

const from = ["Taller Vidal · Carrer de la Llacuna 94 · Barcelona", ""];

export const papers: Record<string, Paper> = {
  "quote-okafor": {
    title: "Quote 118 for Okafor & Daughters",
    lines: [
      ...from,
      "80 dinner plates, 27 cm, iron clay, ash glaze      2.960,00 €",
      "80 side plates, 19 cm      1.840,00 €",
      "60 bowls, 18 cm, for all 60      1.980,00 €",
      "",
      "Two deliveries, six weeks apart. Valid for thirty days.",
    ],
  },
  "quote-photos": {
    title: "Presupuesto: sesión de fotos",
    lines: ["40 piezas, un día      620,00 €", "Retoque      180,00 €", "", "D. Paredes"],
  },
  "invoice-gas": {
    title: "Factura de gas",
    lines: ["Poblenou Energía", "", "Consumo: 4.310 kWh", "Importe: 418,77 €"],
  },
  "invoice-clay": {
    title: "Facture 24-1187",
    lines: [
      "Argiles Blanc",
      "",
      "Grès roux GR-40, 500 kg      390,00 €",
      "Porcelaine PL-2, 200 kg      294,00 €",
      "",
      "Total HT      684,00 €",
    ],
  },
  "tax-receipt": {
    title: "Justificante de presentación",
    lines: ["Modelo 303", "Resultado: a devolver 312,40 €", "", "Ferrer Gestoria"],
  },
  "contract-draft": {
    title: "Agreement, first draft",
    lines: [
      "Between Harbour House Hotels and Taller Vidal",
      "",
      "1. Three colourways: slate, sand, kelp.",
      "4. Payment within 14 days.",
      "7. Deadlines as agreed for each house.",
    ],
  },
  "stand-plan": {
    title: "Fira de Tardor: stands 40 to 52",
    lines: [
      "40 paper · 41 glass · 42 wool · 43 baskets",
      "44 textiles (Ghent) · 45 ceramics (Barcelona)",
      "47 knives (Toledo) · 49 water tap · 51 honey",
    ],
  },
  invitation: {
    title: "Galeria Marques, Lisboa",
    lines: ["Marta Vidal", "O barro lembra-se das mãos", "", "Abertura: dia 14, às 19h"],
  },
  proofs: {
    title: "A porta azul",
    lines: [
      "Revista Lume",
      "Texto: Joana Reis",
      "",
      "No fundo de um pátio, em Poblenou, há uma porta azul.",
      "Atrás dela mora um forno chamado Rosita.",
    ],
  },
};

export const tables: Record<string, readonly (readonly string[])[]> = {
  expenses: [
    ["concept", "supplier", "amount"],
    ["Stoneware 500 kg", "Argiles Blanc", "390.00"],
    ["Porcelain 200 kg", "Argiles Blanc", "294.00"],
    ["Gas", "Poblenou Energía", "418.77"],
    ["Transport", "T. Herrera", "96.00"],
  ],
  "stock-list": [
    ["piece", "bisque", "glazed"],
    ["Bowl 14 cm", "46", "12"],
    ["Side plate 19 cm", "31", "8"],
    ["Cup 18 cl", "18", "40"],
    ["Cobalt (g)", "", "300"],
  ],
  "price-list": [
    ["no", "piece", "height cm", "price"],
    ["1", "Moon jar", "38", "1900"],
    ["2", "Tall bottle", "47", "860"],
    ["3", "Sister (left)", "29", "640"],
    ["7", "Sister (right)", "30", "640"],
  ],
};

export function csv(rows: readonly (readonly string[])[]): Buffer {
  return Buffer.from(rows.map((row) => row.join(",")).join("\n") + "\n");
}

/** One A4 page in Helvetica. */
export function pdf({ title, lines }: Paper): Buffer {
  const writing = [
    "BT /F1 22 Tf 72 750 Td",
    `(${escaped(title)}) Tj`,
    "/F1 12 Tf 0 -22 Td 18 TL",
    ...lines.map((line) => `T* (${escaped(line)}) Tj`),
    "ET",
  ].join("\n");
  const objects = [
    "<< /Type /Catalog /Pages 2 0 R >>",
    "<< /Type /Pages /Kids [3 0 R] /Count 1 >>",
    "<< /Type /Page /Parent 2 0 R /MediaBox [0 0 595 842] /Contents 4 0 R /Resources << /Font << /F1 5 0 R >> >> >>",
    `<< /Length ${writing.length} >>\nstream\n${writing}\nendstream`,
    "<< /Type /Font /Subtype /Type1 /BaseFont /Helvetica /Encoding /WinAnsiEncoding >>",
  ];
  let file = "%PDF-1.4\n";
  const places = objects.map((object, index) => {
    const place = file.length;
    file += `${index + 1} 0 obj\n${object}\nendobj\n`;
    return `${String(place).padStart(10, "0")} 00000 n \n`;
  });
  const start = file.length;
  file += `xref\n0 ${objects.length + 1}\n0000000000 65535 f \n${places.join("")}`;
  file += `trailer\n<< /Size ${objects.length + 1} /Root 1 0 R >>\nstartxref\n${start}\n%%EOF\n`;
  return Buffer.from(file, "latin1");
}

/** For a PDF string in the Windows encoding, where € has a place of its own. */
function escaped(text: string): string {
  return text.replace(/[\\()]/g, "\\$&").replace(/€/g, "\x80");
}
