// Numbers of the resources of the spreadsheet host.
#pragma once

#define NORVANE_DIALOG_ABOUT 201
#define NORVANE_ABOUT_VERSION 202
#define NORVANE_ABOUT_COMMIT 203
#define NORVANE_ABOUT_CHECKSUM 204
