// A run drawn to a file without a window.
#ifndef VIEWIMAGE_H
#define VIEWIMAGE_H

struct ImageRequest;
class QString;

// Draws the image of a file that the request describes. `modulation` is its length in s, 0 for the guess.
// Reports what goes wrong. Returns the status with which the program ends.
int drawImage(const QString &fileName, const ImageRequest &request, double modulation);

#endif // VIEWIMAGE_H
