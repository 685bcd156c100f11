#include "AI/OrdinaryWords.h"

#include "Foundation/Literals.h"
#include "Foundation/Text.h"

#include <QRegularExpression>
#include <QSet>
#include <QStringList>
#include <algorithm>

namespace corvane {

namespace {

QSet<QString> words(const char* list)
{
    const QStringList all = folded(QString::fromUtf8(list)).split(QRegularExpression(u"\\s+"_s), Qt::SkipEmptyParts);
    return QSet<QString>(all.begin(), all.end());
}

bool endsInOneOf(const QString& word, const QStringList& endings)
{
    return std::ranges::any_of(
        endings, [&](const QString& ending) { return word.size() > ending.size() + 2 && word.endsWith(ending); });
}

}

bool isOrdinaryWord(const QString& foldedWord)
{
    static const QSet<QString> list = words(R"(
        a about absolutely according actually after afternoon again all alright also alternatively although always am an and
        another any anyone anything anyway apologies appreciate are around as at attached awesome back based be because been
        before below best better between both brilliant but by call can certainly cheers clear come congrats
        congratulations cool cordially could dear definitely did do does done don't due during each either else enclosed
        enjoy especially even evening every everyone everything exactly excellent fair fantastic feel few finally fine
        first following for forgot from full fyi generally give given glad go good got great had happy hardly has have he
        hello help her here hey hi his hope hopefully how however i i'd i'll i'm i've if in indeed instead invoice is isn't
        it it's its just keep kind kindly know last lastly later less let let's like likewise long looks lovely lunch made
        many maybe me meanwhile might mine moreover morning most much must my naturally neither never new next nice night no
        nobody none noon nope nor not noted nothing now obviously of off often oh ok okay on once one only or other otherwise
        our out over overall p.s ps pdf per perfect perhaps please plus possibly previously price prior probably quick quite
        rather re really received regarding regards regretfully right same second see she should similarly simply since
        sincerely so some somebody someone something sometimes soon sorry sounds speak still such super sure take talk tell
        terrific thank thanks that that's the their them then there there's therefore these they they're things think third
        this those though through thus till to today together tomorrow tonight too true two under understood unfortunately
        unless until up upon us use usually very wait want warm was we we'd we'll we're we've welcome well were what what's
        whatever when whenever where whether which while who whoever why will wish with within without wonderful won't would
        wow yeah yep yes yesterday yet you you'll you're you've your yours asap ok faq id url usa uk eu it hr ceo cto cfo vat
        eta eod iban bic gmbh n.b nb i.e e.g q&a usb sms crm api tv wi-fi wifi internet mr mrs ms english
        delivery shipment order refund money people everybody half part parts work works time date details budget contract
        lunch dinner breakfast coffee drinks weekend week month year days traffic weather quality access support team
        deposit table rent rental entry price prices cost costs total balance tax fee fees postage packing room rooms seats
        tickets ticket menu food wine parking transport travel freight customs stock supply demand interest feedback help
        advice proof evidence results data files slides photos pictures notes minutes agenda schedule slot slots dates
        everyone dates space storage power water heat heating gas oil staff people kids children guests friends family
        spring summer autumn winter life love luck nobody progress business sales marketing design print paper colour color
        size length width weight height speed sound light music version number numbers address phone email mail e-mail
        contract offer quote proposal order orders item items goods material materials samples sample product products)
        ab aber abends ach alle allerdings alles als also am an andernfalls anbei anders auch auf aus ausserdem bei beide
        beim besten bezüglich bis bitte da dabei dadurch dafür daher damit danach danke dann daran darauf darüber darum das
        dass davon dazu dein deine dem den denn dennoch der des deshalb dessen dich die dies diese diesen dieser dieses dir
        doch dort du dürfen ebenso eigentlich ein eine einen einer eines einfach einige einverstanden endlich entschuldige
        entschuldigen entschuldigung entweder er es etwas euch euer eure falls fast freundliche ganz gegen geht gemeinsam
        genau gern gerne gestern gibt gleich gruss grüsse gut gute guten guter habe haben hallo hast hat hätte hätten herzliche herzlichen heute
        hier hiermit hoffentlich ich ihm ihn ihnen ihr ihre ihrem ihren ihrer im immer in inzwischen irgendwann ist ja
        jede jeden jeder jederzeit jetzt kann kannst kein keine klar können könnte könnten lass lassen leider lg liebe
        lieben lieber liebes mache machen man manche mehr mein meine meinen meiner melde meldet mfg mich mir mit
        mittlerweile möchte möchten morgen morgens müssen nach nachher nachmittags natürlich nein nichts nie niemand noch
        nun nur ob obwohl oder ohne passt prima richtig schade schau schick schicke schön schöne schönen sehr sein seine
        seit seitdem sende servus sicher sie sind so sobald sofern sofort sollte sollten sonst soweit sowie später statt
        stimmt tja toll trotzdem tschüss über übrigens um und uns unser unsere unseren unter viel viele vielen vielleicht
        viele vom von vor vorab vorher vorsicht vormittags wann war waren warum was weder wegen weil weiter weiterhin
        welche welcher wenn wer werde werden wie wieder willkommen wir wird wo wobei woher wohin wollen worüber wunderbar
        wünsche würde würden z.b zu zudem zuerst zuletzt zum zunächst zur zurzeit zusammen zwar hallöchen moin euro uhr
        a à ah ainsi alors amicalement après au aucun aucune aussi autre avant avec beaucoup bien bienvenue bises bon bonjour
        bonne bonsoir ça car ce cela celle ces cet cette chaque cher chère chers ci comme comment concernant cordialement
        d'accord dans de depuis des désolé désolée dès donc du elle elles en encore enfin ensuite entendu est et êtes êtes-vous
        il ils j'ai j'attends j'espère j'aimerais je jusqu là la le les leur lorsque lui ma mais malheureusement me merci mes
        moi mon n'hésitez ne ni non nos notre nous nouveau on ou où oui par parfait parfois pas pendant pour pourquoi
        pouvez pouvons pourriez puis quand que quel quelle quelques qui quoi rien sa salut sans se selon ses si sinon son
        sont sous souvent suite super sur ta tant te tes toi ton toujours tous tout toute toutes très tu un une vers veuillez
        voici voilà vos votre vous vu
        adiós además ahora al algo alguien aquí así aún aunque buen buena buenas bueno buenos cada casi claro como con
        confirmo cordiales cordialmente cuando cuál cualquier de del desde después disculpa donde dónde el ella ellos en
        encantada encantado entonces entre era es esa ese eso espero esta está estamos estas este esto estos estoy estupendo
        gracias ha han hasta hay he hola hoy igualmente la las le les lo los luego mañana más me mejor mi mientras mis
        mucha muchas mucho muchos muy nada ni no nos nosotros nuestra nuestro o otra otro para pero perdona perdón perfecto
        perfectamente podemos podría podríamos por porque primero pues puede puedes puedo qué que querida querido quizás
        quedo quedamos recibido saludos se según será si sí siempre siento sin sobre sólo solo son su sus también tampoco
        tan tanto te tenemos tengo todavía todo todos tras tu tus un una unas uno unos usted ustedes va vale vamos ya yo
        allora anche ancora benissimo buona buonasera buongiorno buono caro cara certamente certo che chi ci ciao come
        con cordiali così cosa da dal della di dopo dove e ecco era fammi forse fra gentile già gli grazie ho il invece
        io la le lei lo loro ma magari mi molto nel nella no noi non nostro ogni oggi ok ora per perché però perfetto
        più poi posso possiamo prego purtroppo quando quanto questa questo qui resto saluti se sì sono spero sta su
        subito sua suo tra tutto tutti un una va vi volentieri)");
    static const QStringList endings { u"ing"_s, u"ed"_s, u"ly"_s, u"tion"_s, u"sion"_s, u"ment"_s, u"ments"_s,
        u"ness"_s, u"ance"_s, u"ence"_s, u"able"_s, u"ible"_s, u"ful"_s, u"less"_s, u"ious"_s, u"body"_s, u"thing"_s,
        u"ever"_s, u"n't"_s, u"tions"_s, u"ings"_s, u"mente"_s };
    return foldedWord.size() < 2 || list.contains(foldedWord) || endsInOneOf(foldedWord, endings);
}

bool isOrdinaryGermanNoun(const QString& foldedWord)
{
    static const QSet<QString> list = words(R"(
        abend absprache anfang anfrage anhang anruf anlage arbeit auftrag ausblick basis bedarf beginn bescheid bezug blick
        büro chef dank daten datum details detail eile einfluss einsatz eindruck ende erfolg ergebnis essen fall feedback
        fest form frage fragen freude freunde freundlichen frist geduld gedanken geld gelegenheit gespräch grund grüße
        grüßen gruß gute haus hause hilfe hinweis idee info infos interesse jahr jahre kaffee kontakt kosten kürze kunde
        kunden lieferung links liebe lösung lust mail meinung minute minuten mittag mitte mittagessen monat monate montage
        morgen nachmittag nachricht namen netz not ordnung ort paket papier partner pause plan platz post preis preise
        problem probleme protokoll punkt punkte rat recht rechts rechnung regel rest rückfragen rückmeldung rückruf
        rücksprache ruhe sache sachen schluss schulden seite seiten sicht sinn sommer spaß stand start stelle stunde stunden
        tag tage team telefon teil teile termin termine text thema themen treffen uhr uhrzeit umständen unterlagen urlaub
        verlauf vertrag verfügung vergleich verkauf verständnis verzug voraus vormittag vorschlag vorschläge wahl weg welt
        werk wert wetter winter wissen woche wochen wochenende wort worte wunsch zahlen zeit zeiten ziel zug zukunft
        zustand zweifel e-mail email kolleginnen kollegen kollege kollegin angebot angebote bestellung ware lager version)");
    static const QStringList endings { u"ung"_s, u"ungen"_s, u"heit"_s, u"heiten"_s, u"keit"_s, u"keiten"_s,
        u"schaft"_s, u"schaften"_s, u"tion"_s, u"tionen"_s, u"tat"_s, u"ment"_s, u"nis"_s, u"nisse"_s, u"ling"_s,
        u"tage"_s, u"tag"_s, u"termin"_s, u"zeit"_s, u"zeiten"_s, u"kosten"_s, u"preis"_s, u"woche"_s, u"vertrag"_s,
        u"enz"_s, u"ismus"_s };
    return list.contains(foldedWord) || endsInOneOf(foldedWord, endings);
}

bool isTitle(const QString& foldedWord)
{
    static const QSet<QString> list
        = words("mr mrs ms miss dr prof sir madam herr herrn frau hr fr firma familie kollege "
                "kollegin m mme mlle monsieur madame maître sr sra señor señora don doña sig "
                "signor signora dott");
    return list.contains(foldedWord);
}

bool isGreeting(const QString& foldedWord)
{
    static const QSet<QString> list
        = words("hi hey hello dear hallo liebe lieber servus moin salut salaam shalom namaste bonjour cher chère hola "
                "querido querida estimado estimada ciao caro cara");
    return list.contains(foldedWord);
}

bool isGermanNameSign(const QString& foldedWord)
{
    static const QSet<QString> list
        = words("mit von bei an für nach aus in durch gegenüber dass ob weil wenn da wie sobald bevor über");
    return list.contains(foldedWord);
}

bool isVerbAfterName(const QString& foldedWord)
{
    static const QSet<QString> list = words(R"(
        is was will has had can could would should said says told tells asked asks mentioned confirmed wants wanted needs
        agreed suggested wrote called thinks thought sent sends knows joined joins takes handles signed offered promised
        who from at and
        ist war wird hat hatte kann könnte sagt sagte meint meinte kommt kam möchte schickt schickte ruft übernimmt weiß
        braucht fragt fragte bringt macht hilft wollte will soll und aus
        a est était va peut veut sera dit arrive vient et es está tiene puede quiere dice viene y è ha può vuole)");
    return list.contains(foldedWord);
}

bool isClosing(const QString& foldedWord)
{
    static const QSet<QString> list
        = words("regards best cheers thanks thank you love sincerely yours wishes greetings "
                "gruß grüße grüßen lg vg mfg dank danke cordialement amicalement bises saludos "
                "gracias saluti grazie abrazo");
    return list.contains(foldedWord);
}

bool isGermanFunctionWord(const QString& foldedWord)
{
    static const QSet<QString> list = words(R"(
        der die das und ich ist nicht wir sie ihr ihnen ihre mit für auf dass zu den dem ein eine einen bei uns mir dir
        dich mich euch noch auch gern gerne bitte danke dank vielen hallo moin liebe lieber können werden haben habe kann
        guten sehr geehrte geehrter frau herr morgen kommt wird sind seid oder aber um von vom zum zur uhr klar dann bis
        schon früh leider wenn falls ab passt ja nein es du er so nur mal wie was welchen dazu damit nach gruß grüße)");
    return list.contains(foldedWord);
}

bool isEnglishFunctionWord(const QString& foldedWord)
{
    static const QSet<QString> list = words(R"(
        the and to of is are you we i it for with will at on in your our be can have has that this as or but not if us me
        my from by would could should please thanks do does did was were been a an about let's i'll)");
    return list.contains(foldedWord);
}

}
