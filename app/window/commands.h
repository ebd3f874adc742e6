/* Keyboard and menu commands of the image window. */
#ifndef TALVOR_COMMANDS_H
#define TALVOR_COMMANDS_H

/* Builds the pop-up menu (with its "Processing" sub-menu) on the right button. */
void MakeMenus(void);

/* Main-menu values: 1 open a TGA file, 2 invert, 3 options form, 4 graph
 * form, 5 save results, 9 quit; other values do nothing. */
void HandleMainMenu(int value);

/* 1 starts a new count, 2 stops counting; other values do nothing. */
void HandleProcessMenu(int value);

void HandleKeyboard(unsigned char key, int x, int y);
void HandleSpecialKeyboard(int key, int x, int y);
void HandleMouse(int button, int state, int x, int y);
void HandleMouseMotion(int x, int y);
void HandlePassiveMotion(int x, int y);

#endif
