// The page that says what mouse and keys do.
#ifndef HELPPAGE_H
#define HELPPAGE_H

class QWidget;

// Shows the page in a window of its own, which `parent` owns.
void showHelpPage(QWidget *parent);

#endif // HELPPAGE_H
