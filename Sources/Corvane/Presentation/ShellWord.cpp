#include "Presentation/ShellWord.h"

#include "Foundation/ShellQuoting.h"
#include "Foundation/Text.h"
#include "Presentation/BodyText.h"

namespace corvane {

QString typedShellWord(const QString& text)
{
    return posixQuoted(singleLine(BodyText::printable(text)));
}

}
