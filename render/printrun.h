#pragma once

class QString;
class QTranslator;
class ZTConfiguration;

// One print run: renders the request named on the command line into the
// output file. Diagnostics go to standard output; there is no failure status.
void compile(int argc, char** argv);

// Loads the label catalogue that the configuration's language settings name
// ("zentaro.language.basedir" and "zentaro.language.file"), if it is sound.
void loadTranslation(QTranslator& translator, const ZTConfiguration& configuration);
