// The part of AppKit that Tavelle uses.
#pragma once

#import <Foundation/Foundation.h>

#define APPKIT_EXTERN FOUNDATION_EXPORT

NS_ASSUME_NONNULL_BEGIN

@class NSApplication, NSEvent, NSLayoutConstraint, NSLayoutDimension, NSLayoutXAxisAnchor, NSLayoutYAxisAnchor, NSMenu,
    NSScrollView, NSStatusBarButton, NSTableColumn, NSTableView, NSToolbar, NSToolbarItem, NSWindow;

// The application

@protocol NSApplicationDelegate <NSObject>
@optional
- (void)applicationWillFinishLaunching:(NSNotification*)notification;
- (void)applicationDidFinishLaunching:(NSNotification*)notification;
- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender hasVisibleWindows:(BOOL)hasWindows;
- (void)applicationWillTerminate:(NSNotification*)notification;
@end

@interface NSResponder : NSObject
@property(nullable, readonly, strong) NSUndoManager* undoManager;
@end

@interface NSApplication : NSResponder
@property(class, readonly, strong) __kindof NSApplication* sharedApplication;
@property(nullable, weak) id<NSApplicationDelegate> delegate;
- (void)run;
- (void)activateIgnoringOtherApps:(BOOL)flag;
- (void)terminate:(nullable id)sender;
- (BOOL)sendAction:(SEL)action to:(nullable id)target from:(nullable id)sender;
@end

// Key events

typedef enum NSEventMask : unsigned long long { NSEventMaskKeyDown = 1ULL << 10 } NSEventMask;
typedef enum NSEventModifierFlags : NSUInteger {
  NSEventModifierFlagShift = 1 << 17,
  NSEventModifierFlagControl = 1 << 18,
  NSEventModifierFlagOption = 1 << 19,
  NSEventModifierFlagCommand = 1 << 20
} NSEventModifierFlags;

@interface NSEvent : NSObject
@property(readonly) unsigned short keyCode;
@property(readonly) NSEventModifierFlags modifierFlags;
@property(nullable, readonly, copy) NSString* characters;
+ (nullable id)addLocalMonitorForEventsMatchingMask:(NSEventMask)mask
                                            handler:(NSEvent* _Nullable (^)(NSEvent* event))block;
+ (void)removeMonitor:(id)monitor;
@end

// Images

typedef NSString* NSImageName;

@interface NSImage : NSObject
+ (nullable NSImage*)imageNamed:(NSImageName)name;
+ (nullable instancetype)imageWithSystemSymbolName:(NSString*)name
                          accessibilityDescription:(nullable NSString*)description API_AVAILABLE(macos(11.0));
- (void)setTemplate:(BOOL)isTemplate;  // written as a call: `template` is a keyword
@end

// Views

typedef float NSLayoutPriority;
typedef enum NSUserInterfaceLayoutOrientation : NSInteger {
  NSUserInterfaceLayoutOrientationHorizontal = 0,
  NSUserInterfaceLayoutOrientationVertical = 1
} NSUserInterfaceLayoutOrientation;
typedef enum NSLayoutConstraintOrientation : NSInteger {
  NSLayoutConstraintOrientationHorizontal = 0,
  NSLayoutConstraintOrientationVertical = 1
} NSLayoutConstraintOrientation;
typedef enum NSLayoutAttribute : NSInteger {
  NSLayoutAttributeLeading = 5,
  NSLayoutAttributeCenterX = 9,
  NSLayoutAttributeCenterY = 10
} NSLayoutAttribute;

@interface NSLayoutAnchor<AnchorType> : NSObject
- (NSLayoutConstraint*)constraintEqualToAnchor:(NSLayoutAnchor<AnchorType>*)anchor;
- (NSLayoutConstraint*)constraintEqualToAnchor:(NSLayoutAnchor<AnchorType>*)anchor constant:(CGFloat)constant;
@end

@interface NSLayoutXAxisAnchor : NSLayoutAnchor <NSLayoutXAxisAnchor*>
@end

@interface NSLayoutYAxisAnchor : NSLayoutAnchor <NSLayoutYAxisAnchor*>
@end

@interface NSLayoutDimension : NSLayoutAnchor <NSLayoutDimension*>
- (NSLayoutConstraint*)constraintEqualToConstant:(CGFloat)constant;
- (NSLayoutConstraint*)constraintGreaterThanOrEqualToConstant:(CGFloat)constant;
- (NSLayoutConstraint*)constraintLessThanOrEqualToConstant:(CGFloat)constant;
@end

@interface NSLayoutConstraint : NSObject
@property CGFloat constant;
@property(getter=isActive) BOOL active;
+ (void)activateConstraints:(NSArray<NSLayoutConstraint*>*)constraints;
@end

@protocol NSAccessibility <NSObject>
@property(nullable, copy) NSString* accessibilityLabel;
@end

@interface NSView : NSResponder <NSAccessibility>
- (instancetype)initWithFrame:(NSRect)frame;
@property(nullable, readonly, assign) NSView* superview;
@property(getter=isHidden) BOOL hidden;
@property(readonly, getter=isFlipped) BOOL flipped;
@property(nullable, copy) NSString* toolTip;
@property BOOL translatesAutoresizingMaskIntoConstraints;
@property(readonly, strong) NSLayoutXAxisAnchor* leadingAnchor;
@property(readonly, strong) NSLayoutXAxisAnchor* trailingAnchor;
@property(readonly, strong) NSLayoutYAxisAnchor* topAnchor;
@property(readonly, strong) NSLayoutYAxisAnchor* bottomAnchor;
@property(readonly, strong) NSLayoutDimension* widthAnchor;
@property(readonly, strong) NSLayoutDimension* heightAnchor;
- (void)addSubview:(NSView*)view;
- (void)removeFromSuperview;
- (void)setContentCompressionResistancePriority:(NSLayoutPriority)priority
                                 forOrientation:(NSLayoutConstraintOrientation)orientation;
- (void)setContentHuggingPriority:(NSLayoutPriority)priority forOrientation:(NSLayoutConstraintOrientation)orientation;
@end

typedef enum NSStackViewDistribution : NSInteger {
  NSStackViewDistributionGravityAreas = -1,
  NSStackViewDistributionFill = 0
} NSStackViewDistribution;

@interface NSStackView : NSView
@property NSUserInterfaceLayoutOrientation orientation;
@property NSLayoutAttribute alignment;
@property NSStackViewDistribution distribution;
@property CGFloat spacing;
@property(readonly, copy) NSArray<__kindof NSView*>* arrangedSubviews;
- (void)insertArrangedSubview:(NSView*)view atIndex:(NSInteger)index;
@end

typedef enum NSTitlePosition : NSUInteger { NSNoTitle = 0 } NSTitlePosition;

@interface NSBox : NSView
@property NSTitlePosition titlePosition;
@end

@interface NSClipView : NSView
@end

@interface NSScrollView : NSView
@property(strong) NSClipView* contentView;
@property(nullable, strong) __kindof NSView* documentView;
@property BOOL hasVerticalScroller;
@property BOOL drawsBackground;
@end

// Controls

typedef CGFloat NSFontWeight;
APPKIT_EXTERN const NSFontWeight NSFontWeightRegular;

@interface NSFont : NSObject
@property(class, readonly) CGFloat systemFontSize;
+ (NSFont*)systemFontOfSize:(CGFloat)size;
+ (NSFont*)boldSystemFontOfSize:(CGFloat)size;
+ (NSFont*)monospacedDigitSystemFontOfSize:(CGFloat)size weight:(NSFontWeight)weight;
+ (NSFont*)monospacedSystemFontOfSize:(CGFloat)size weight:(NSFontWeight)weight API_AVAILABLE(macos(10.15));
@end

@interface NSColor : NSObject
@property(class, strong, readonly) NSColor* labelColor;
@property(class, strong, readonly) NSColor* secondaryLabelColor;
@property(class, strong, readonly) NSColor* systemGreenColor;
@property(class, strong, readonly) NSColor* systemRedColor;
@property(class, strong, readonly) NSColor* systemOrangeColor;
@end

typedef enum NSControlSize : NSUInteger { NSControlSizeRegular = 0, NSControlSizeSmall = 1 } NSControlSize;
typedef enum NSLineBreakMode : NSUInteger {
  NSLineBreakByWordWrapping = 0,
  NSLineBreakByClipping = 2,
  NSLineBreakByTruncatingTail = 4
} NSLineBreakMode;
typedef enum NSTextAlignment : NSInteger {
#if TARGET_CPU_ARM64
  NSTextAlignmentCenter = 1
#else
  NSTextAlignmentCenter = 2
#endif
} NSTextAlignment;

@interface NSCell : NSObject
@property(getter=isScrollable) BOOL scrollable;
@end

@interface NSControl : NSView
@property(nullable, strong) __kindof NSCell* cell;
@property(nullable, weak) id target;
@property(nullable) SEL action;
@property(getter=isEnabled) BOOL enabled;
@property(getter=isContinuous) BOOL continuous;
@property NSControlSize controlSize;
@property(nullable, strong) NSFont* font;
@property NSTextAlignment alignment;
@property NSLineBreakMode lineBreakMode;
@property BOOL usesSingleLineMode;
@property(copy) NSString* stringValue;
@property double doubleValue;
@end

@protocol NSControlTextEditingDelegate <NSObject>
@optional
- (void)controlTextDidChange:(NSNotification*)notification;
@end

@protocol NSTextFieldDelegate <NSControlTextEditingDelegate>
@end

@interface NSTextField : NSControl
+ (instancetype)labelWithString:(NSString*)string;
@property(nullable, copy) NSColor* textColor;
@property CGFloat preferredMaxLayoutWidth;
@property(nullable, weak) id<NSTextFieldDelegate> delegate;
@end

@interface NSSecureTextField : NSTextField
@end

@protocol NSTextDelegate <NSObject>
@optional
- (void)textDidChange:(NSNotification*)notification;
@end

@protocol NSTextViewDelegate <NSTextDelegate>
@end

@interface NSText : NSView
@property(copy) NSString* string;
@property(nullable, strong) NSFont* font;
@property(getter=isRichText) BOOL richText;
@end

@interface NSTextView : NSText
@property(class, readonly, strong) NSScrollView* scrollableTextView;
@property(nullable, weak) id<NSTextViewDelegate> delegate;
@property BOOL allowsUndo;
@property(getter=isAutomaticQuoteSubstitutionEnabled) BOOL automaticQuoteSubstitutionEnabled;
@property(getter=isAutomaticDashSubstitutionEnabled) BOOL automaticDashSubstitutionEnabled;
@property(getter=isAutomaticTextReplacementEnabled) BOOL automaticTextReplacementEnabled;
@property(getter=isAutomaticSpellingCorrectionEnabled) BOOL automaticSpellingCorrectionEnabled;
@property BOOL smartInsertDeleteEnabled;
@end

typedef enum NSImageScaling : NSUInteger { NSImageScaleProportionallyUpOrDown = 3 } NSImageScaling;

@interface NSImageView : NSControl
@property(nullable, strong) NSImage* image;
@property NSImageScaling imageScaling;
@end

@interface NSSlider : NSControl
@property double minValue;
@property double maxValue;
@property NSInteger numberOfTickMarks;
@property BOOL allowsTickMarkValuesOnly;
@end

typedef enum NSCellImagePosition : NSUInteger { NSImageOnly = 1 } NSCellImagePosition;

@interface NSButton : NSControl
+ (instancetype)buttonWithTitle:(NSString*)title target:(nullable id)target action:(nullable SEL)action;
@property(copy) NSString* title;
@property(nullable, strong) NSImage* image;
@property NSCellImagePosition imagePosition;
@end

@interface NSPopUpButton : NSButton
- (instancetype)initWithFrame:(NSRect)frame pullsDown:(BOOL)pullsDown;
@property(nullable, strong) NSMenu* menu;
@property(readonly) NSInteger indexOfSelectedItem;
- (void)selectItemAtIndex:(NSInteger)index;
@end

@protocol NSTableViewDataSource <NSObject>
@optional
- (NSInteger)numberOfRowsInTableView:(NSTableView*)tableView;
@end

@protocol NSTableViewDelegate <NSObject>
@optional
- (nullable NSView*)tableView:(NSTableView*)tableView
           viewForTableColumn:(nullable NSTableColumn*)column
                          row:(NSInteger)row;
- (void)tableViewSelectionDidChange:(NSNotification*)notification;
@end

typedef NSString* NSUserInterfaceItemIdentifier;

@interface NSTableColumn : NSObject
- (instancetype)initWithIdentifier:(NSUserInterfaceItemIdentifier)identifier;
@end

@interface NSTableHeaderView : NSView
@end

@interface NSTableView : NSControl
@property(nullable, weak) id<NSTableViewDataSource> dataSource;
@property(nullable, weak) id<NSTableViewDelegate> delegate;
@property(nullable, strong) NSTableHeaderView* headerView;
@property BOOL allowsEmptySelection;
@property(readonly) NSInteger selectedRow;
- (void)addTableColumn:(NSTableColumn*)column;
- (void)sizeLastColumnToFit;
- (void)reloadData;
- (void)selectRowIndexes:(NSIndexSet*)rows byExtendingSelection:(BOOL)extends;
@end

// Windows

typedef enum NSWindowStyleMask : NSUInteger {
  NSWindowStyleMaskTitled = 1 << 0,
  NSWindowStyleMaskClosable = 1 << 1
} NSWindowStyleMask;
typedef enum NSBackingStoreType : NSUInteger { NSBackingStoreBuffered = 2 } NSBackingStoreType;
typedef enum NSWindowToolbarStyle : NSInteger { NSWindowToolbarStylePreference = 2 } NSWindowToolbarStyle;
typedef enum NSToolbarDisplayMode : NSUInteger { NSToolbarDisplayModeIconAndLabel = 1 } NSToolbarDisplayMode;
typedef NSString* NSToolbarIdentifier;
typedef NSString* NSToolbarItemIdentifier;

@interface NSWindow : NSResponder
- (instancetype)initWithContentRect:(NSRect)contentRect
                          styleMask:(NSWindowStyleMask)styleMask
                            backing:(NSBackingStoreType)backing
                              defer:(BOOL)isDeferred;
@property(copy) NSString* title;
@property(nullable, strong) __kindof NSView* contentView;
@property(getter=isReleasedWhenClosed) BOOL releasedWhenClosed;
@property(nullable, strong) NSToolbar* toolbar;
@property NSWindowToolbarStyle toolbarStyle API_AVAILABLE(macos(11.0));
- (void)center;
- (void)close;
- (void)makeKeyAndOrderFront:(nullable id)sender;
- (BOOL)performKeyEquivalent:(NSEvent*)event;
@end

@protocol NSToolbarDelegate <NSObject>
@optional
- (nullable NSToolbarItem*)toolbar:(NSToolbar*)toolbar
             itemForItemIdentifier:(NSToolbarItemIdentifier)identifier
         willBeInsertedIntoToolbar:(BOOL)isInserted;
- (NSArray<NSToolbarItemIdentifier>*)toolbarDefaultItemIdentifiers:(NSToolbar*)toolbar;
- (NSArray<NSToolbarItemIdentifier>*)toolbarAllowedItemIdentifiers:(NSToolbar*)toolbar;
- (NSArray<NSToolbarItemIdentifier>*)toolbarSelectableItemIdentifiers:(NSToolbar*)toolbar;
@end

@interface NSToolbar : NSObject
- (instancetype)initWithIdentifier:(NSToolbarIdentifier)identifier;
@property(nullable, weak) id<NSToolbarDelegate> delegate;
@property NSToolbarDisplayMode displayMode;
@property(nullable, copy) NSToolbarItemIdentifier selectedItemIdentifier;
@end

@interface NSToolbarItem : NSObject
- (instancetype)initWithItemIdentifier:(NSToolbarItemIdentifier)identifier;
@property(readonly, copy) NSToolbarItemIdentifier itemIdentifier;
@property(copy) NSString* label;
@property(nullable, strong) NSImage* image;
@property(nullable, weak) id target;
@property(nullable) SEL action;
@end

// The status bar and menus

@interface NSStatusBarButton : NSButton
@end

static const CGFloat NSSquareStatusItemLength = -2.0;

@interface NSStatusItem : NSObject
@property(nullable, strong) NSMenu* menu;
@property(nullable, readonly, strong) NSStatusBarButton* button;
@end

@interface NSStatusBar : NSObject
@property(class, readonly, strong) NSStatusBar* systemStatusBar;
- (NSStatusItem*)statusItemWithLength:(CGFloat)length;
- (void)removeStatusItem:(NSStatusItem*)item;
@end

@interface NSMenuItem : NSObject
+ (NSMenuItem*)separatorItem;
- (instancetype)initWithTitle:(NSString*)title action:(nullable SEL)selector keyEquivalent:(NSString*)keyEquivalent;
@property(nullable, weak) id target;
@property(nullable, strong) id representedObject;
@end

@interface NSMenu : NSObject
- (instancetype)initWithTitle:(NSString*)title;
- (void)addItem:(NSMenuItem*)item;
@end

// The pasteboard

typedef NSString* NSPasteboardType;
APPKIT_EXTERN NSPasteboardType const NSPasteboardTypeString;

@interface NSPasteboard : NSObject
@property(class, readonly, strong) NSPasteboard* generalPasteboard;
@property(nullable, readonly, copy) NSArray<NSPasteboardType>* types;
- (NSInteger)clearContents;
- (BOOL)setData:(nullable NSData*)data forType:(NSPasteboardType)type;
- (BOOL)setString:(NSString*)string forType:(NSPasteboardType)type;
- (nullable NSData*)dataForType:(NSPasteboardType)type;
- (nullable NSString*)stringForType:(NSPasteboardType)type;
@end

NS_ASSUME_NONNULL_END
