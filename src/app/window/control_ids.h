// Ids of the main window's controls, menu entries, dialogs, strings and timers. The resource script includes
// this file, so it holds plain numbers only.
#pragma once

// Dialogs, menus, icons
#define ID_DIALOG_ABOUT 103
#define ID_MENU 109
#define ID_ACCELERATORS 109
#define ID_REPLAY_ACCELERATORS 110
#define ID_ICON 107
#define ID_DIALOG_MAIN 129
#define ID_DIALOG_FOLDER 130
#define ID_DIALOG_SHORTCUTS 131
#define ID_DIALOG_SINGLE 132
#define ID_DIALOG_DUAL 133
#define ID_DIALOG_BAUD 134
#define ID_DIALOG_DETAIL 135
#define ID_DIALOG_OPTIONS 136
#define ID_DIALOG_MARK 137
#define ID_DIALOG_FIND 140

// Strings
#define ID_STRING_TITLE 103
#define ID_STRING_CLASS 109
#define ID_STRING_SINGLE_ATTITUDE 104
#define ID_STRING_SINGLE 114
#define ID_STRING_DUAL 117
#define ID_STRING_DUAL_ATTITUDE 140

// Controls of the main window
#define ID_DEVICE_PORT 1001
#define ID_DEVICE_SPEED 1002
#define ID_GPS_PORT 1003
#define ID_GPS_SPEED 1004
#define ID_START 1005
#define ID_INTERVAL 1012
#define ID_ECHOGRAM 1013
#define ID_RANGE 1014
#define ID_STOP 1015
#define ID_OUTPUT 1020
#define ID_APPLY 1022
#define ID_DETAIL 1023
#define ID_DEFAULT 1025
#define ID_LOW_FREQUENCY 1033
#define ID_HIGH_FREQUENCY 1034
#define ID_PRESET_LABEL 1035
#define ID_PRESET 1036
#define ID_PLAYBACK 1056
#define ID_RESUME 1058
#define ID_RECORD 1059
#define ID_SAVE_ADDITIONAL 1060
#define ID_DUAL_MODE 1062
#define ID_TIMESTAMP 1064
#define ID_BACK 1065
#define ID_FAST_BACK 1066
#define ID_AUTO_CAPTURE 1067
#define ID_SHOW_SETTINGS 1068
#define ID_PAUSE 1071
#define ID_SEGY_CONVERT 1072
#define ID_MEASURED_INTERVAL 1085
#define ID_RECORDING_LAMP 1086
#define ID_RECEIVER_LAMP 1087
#define ID_RANGE_UNIT 1088
#define ID_WAITS_FREQUENCY 1089
#define ID_WAITS_DUAL 1090
#define ID_WAITS_OUTPUT 1091
#define ID_WAITS_RANGE 1092
#define ID_WAITS_INTERVAL 1093
#define ID_WAITS_PRESET 1094

// The playback bar and its controls
#define ID_PLAYBACK_BAR 1110
#define ID_REPLAY_PACE 1111
#define ID_REPLAY_SKIP_GAPS 1112
#define ID_REPLAY_TIME 1113
#define ID_REPLAY_GO_TO 1114
#define ID_REPLAY_STRIP 1115  // a place in it, no window

// Its keys
#define ID_REPLAY_HOLD 32810
#define ID_REPLAY_BACK 32811
#define ID_REPLAY_FAR_BACK 32812
#define ID_REPLAY_ON 32813
#define ID_REPLAY_FAR_ON 32814
#define ID_REPLAY_BEGIN 32815
#define ID_REPLAY_FASTER 32816
#define ID_REPLAY_SLOWER 32817

// Menu entries
#define ID_MENU_ABOUT 104
#define ID_MENU_EXIT 105
#define ID_MENU_FOLDER 32771
#define ID_MENU_SHORTCUTS 32773
#define ID_MENU_BAUD 32775
#define ID_MENU_BIN_TO_TXT 32778
#define ID_MENU_SEGY 32782
#define ID_MENU_OPTIONS 32790
#define ID_MENU_MARK 32791
#define ID_MENU_MARK_WORD 32792
#define ID_MENU_FIND 32850
#define ID_MENU_SHOW_IN_FOLDER 32793
#define ID_MENU_RECENT 32840  // and those behind it

// Controls of the small dialogs
#define ID_DIALOG_OK 1  // the system's IDOK
#define ID_FOLDER_EDIT 1023
#define ID_FOLDER_BROWSE 1005
#define ID_MARK_WORD 1023
#define ID_BAUD_SPEED 1001
#define ID_BAUD_CHANGE 1005

// Controls of "Find device"
#define ID_FIND_PORTS 1201
#define ID_FIND_SPEEDS 1202
#define ID_FIND_SEARCH 1203
#define ID_FIND_STATE 1204

// Keys for what has no control
#define ID_KEY_FULL_WINDOW 32830
#define ID_KEY_PICTURE 32831
#define ID_KEY_SMALLER_RANGE 32832
#define ID_KEY_LARGER_RANGE 32833
#define ID_KEY_SHORTER_TIME 32834
#define ID_KEY_LONGER_TIME 32835

// Controls of the pages of options; those of the options themselves are numbered from the last one on
#define ID_OPTIONS_DEFAULTS 1101
#define ID_OPTIONS_NOTE 1102
#define ID_OPTIONS_FIRST 2200

// Timers of the main window
#define ID_TIMER_PORTS 0
#define ID_TIMER_REPAINT 1
#define ID_TIMER_SPARE 2
#define ID_TIMER_PLAYBACK_END 5
#define ID_TIMER_CAPTURE 6
#define ID_TIMER_CHANGES 7
#define ID_TIMER_LINK 8
