/* The options form and the graph form (XForms), their records and flags.
 * Both are built once at start-up and only shown and hidden afterwards; no
 * object has a callback of its own: the idle handler polls them. */
#ifndef TALVOR_APPFORMS_H
#define TALVOR_APPFORMS_H

#include <forms.h>

/* Form records in the forms designer's shape: the form, three spare user
 * fields, then the named objects. */
typedef struct {
    FL_FORM *optionsform;
    void *vdata;
    char *cdata;
    long ldata;
    FL_OBJECT *hide;
    FL_OBJECT *offsets;  /* "Number of offset samples" */
    FL_OBJECT *boxstart; /* "Box size range" (first box size) */
    FL_OBJECT *boxend;   /* "to" (last box size) */
    FL_OBJECT *factor;   /* "Box reduction factor" */
} FD_optionsform;

typedef struct {
    FL_FORM *graphform;
    void *vdata;
    char *cdata;
    long ldata;
    FL_OBJECT *plot;  /* ln N(s) against ln(1/s), as points */
    FL_OBJECT *hide;
    FL_OBJECT *slope; /* "Slope estimate", display only */
} FD_graphform;

extern FD_optionsform *optionsform; /* built once at start-up */
extern FD_graphform *graphform;     /* built once at start-up */
extern int optionsformvisible;      /* 1 while the options form is shown */
extern int graphformvisible;        /* 1 while the graph form is shown */

FD_optionsform *create_form_optionsform(void);
FD_graphform *create_form_graphform(void);

/* fl_initialize, both forms built, the slope field made inactive, and the
 * options form filled. */
void StartForms(int *argc, char **argv);

/* Shows a form centred on the screen with a full border and no title; a form
 * already shown is raised instead. */
void ShowForm(FL_FORM *form);

/* Shows the file selector with the given prompt and empty directory, pattern
 * and default name; returns the chosen path, or null when cancelled. */
const char *AskFileName(const char *prompt);

/* When the graph form is shown and there are at least 4 results: plots the
 * log-log points, lays the fitted line over the plot's whole x range and
 * shows the slope. */
void UpdateGraphForm(void);

/* When the options form is shown, writes noffsets, boxend, boxstart ("Auto"
 * when automatic) and boxfactor into its inputs, in that order. */
void UpdateOptionForm(void);

/* Acts on the object fl_check_forms returned: the Hide buttons hide their
 * form; an edited input is read back into the settings, corrected (offsets
 * at least 1, first size above 1 or Auto, last size above 0 or else 2,
 * factor above 1.0 or else 1.1) and shown again as accepted. */
void HandleFormObject(FL_OBJECT *obj);

#endif
