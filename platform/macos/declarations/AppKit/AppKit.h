// The part of AppKit that Tavelle uses.
#pragma once

#import <Foundation/Foundation.h>

#define APPKIT_EXTERN FOUNDATION_EXPORT

NS_ASSUME_NONNULL_BEGIN

@class NSApplication, NSMenu, NSStatusBarButton;

// The application

@protocol NSApplicationDelegate <NSObject>
@optional
- (void)applicationWillFinishLaunching:(NSNotification*)notification;
- (void)applicationDidFinishLaunching:(NSNotification*)notification;
- (BOOL)applicationShouldHandleReopen:(NSApplication*)sender hasVisibleWindows:(BOOL)hasWindows;
- (void)applicationWillTerminate:(NSNotification*)notification;
@end

@interface NSResponder : NSObject
@end

@interface NSApplication : NSResponder
@property(class, readonly, strong) __kindof NSApplication* sharedApplication;
@property(nullable, weak) id<NSApplicationDelegate> delegate;
- (void)run;
- (void)terminate:(nullable id)sender;
@end

// Images, the status bar and menus

typedef NSString* NSImageName;

@interface NSImage : NSObject
+ (nullable NSImage*)imageNamed:(NSImageName)name;
- (void)setTemplate:(BOOL)isTemplate;  // written as a call: `template` is a keyword
@end

@interface NSView : NSResponder
@end

@interface NSControl : NSView
@end

@interface NSButton : NSControl
@property(nullable, strong) NSImage* image;
@end

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
